#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <algorithm>

namespace kestro {

/// How the desktop wants programs to look.
struct Look {
    bool dark = false;
    QColor accent = QColor(0x0A, 0x84, 0xFF);
    bool reduceMotion = false;
    QString fontFamily{}; ///< the interface font, empty where the desktop names none

    double textScale = 1; ///< how much larger than usual the user wants writing

    /// How much larger than usual what holds writing has to be; it never shrinks with it.
    double growth() const { return std::max(1.0, textScale); }
    int grown(int points) const { return qRound(points * growth()); }

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
