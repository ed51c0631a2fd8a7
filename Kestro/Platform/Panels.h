#pragma once

#include <QObject>
#include <QRegion>

class QWindow;

namespace kestro {

/// Turns a plain window into a panel: above the others, on all desktops, in no task bar, never focused.
/// Main thread. Windows stay their owner's; each is adopted once, before it is first shown.
class Panels : public QObject {
    Q_OBJECT
public:
    virtual void adopt(QWindow& window) = 0;

    /// The part of `window` that takes the pointer, in its own logical coordinates; the empty region lets everything
    /// through. Set it when the painted shape changes, not while the pointer moves. Without a compositor the window is
    /// cut to the same shape, since nothing there can be seen through.
    virtual void setShape(QWindow& window, const QRegion& shape) = 0;

    /// Gives the keyboard to a panel that is on the screen, which its window is otherwise never given, and remembers
    /// who had it.
    virtual void takeFocus(QWindow& window) = 0;
    /// Gives the keyboard back to the window that had it, if `window` still has it and that window still exists.
    virtual void returnFocus(QWindow& window) = 0;

    /// Whether translucent windows can be seen through.
    virtual bool isComposited() const = 0;

Q_SIGNALS:
    void compositedChanged();
};

} // namespace kestro
