#pragma once

#include <QColor>
#include <QObject>
#include <QString>

namespace kestro {

/// How the desktop wants programs to look.
struct Look {
    bool dark = false;
    QColor accent = QColor(0x0A, 0x84, 0xFF);
    bool reduceMotion = false;
    QString fontFamily{}; ///< the interface font, empty where the desktop names none

    double textScale = 1; ///< how much larger than usual the user wants writing

    bool operator==(const Look&) const = default;
};

class Appearance : public QObject {
    Q_OBJECT
public:
    virtual Look look() const = 0;

Q_SIGNALS:
    void changed();
};

} // namespace kestro
