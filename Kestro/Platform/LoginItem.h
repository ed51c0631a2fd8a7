#pragma once

#include <QObject>
#include <optional>

namespace kestro {

/// Whether the program starts with the user's session. Main thread.
class LoginItem : public QObject {
    Q_OBJECT
public:
    virtual bool isEnabled() const = 0;
    /// The failure in plain words, else nothing.
    virtual std::optional<QString> setEnabled(bool enabled) = 0;

Q_SIGNALS:
    void changed(); ///< by us or by another program
};

} // namespace kestro
