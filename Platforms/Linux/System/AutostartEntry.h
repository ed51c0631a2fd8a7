#pragma once

#include "Kestro/Platform/LoginItem.h"

#include <memory>

namespace kestro {

class FileWatch;

/// Starting with the session, by a desktop entry in the user's autostart folder. Other programs may change it: the
/// desktop's own start-up settings do. It is watched while `changed` has a listener.
class AutostartEntry final : public LoginItem {
    Q_OBJECT
public:
    /// `configuration` is the folder of the user's configuration; where it is not absolute, `.config` in `home` is
    /// meant. `program` is started.
    AutostartEntry(const QString& home, const QString& configuration, QString program);
    ~AutostartEntry() override;

    bool isEnabled() const override;
    std::optional<QString> setEnabled(bool enabled) override;

protected:
    void connectNotify(const QMetaMethod& signal) override;
    void disconnectNotify(const QMetaMethod& signal) override;

private:
    void look();
    void watchFolders();

    QString m_path;
    QString m_program;
    std::unique_ptr<FileWatch> m_watch;
    bool m_told = false; // the last state that listeners know
};

} // namespace kestro
