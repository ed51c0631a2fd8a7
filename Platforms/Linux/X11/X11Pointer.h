#pragma once

#include "Kestro/Platform/Pointer.h"

#include <QList>
#include <QObject>
#include <QPoint>
#include <QTimer>
#include <optional>

namespace kestro {

class X11Connection;
class X11Screens;

/// The pointer, asked of the server; raw motion of the devices is only the alarm clock.
///
/// Raw events come whichever client grabs the pointer, and at the rate of the mouse, up to a thousand a second. So the
/// first one ends the subscription, the position is asked for once a frame while it changes, and when it rests the
/// subscription is renewed. Positions set by a program (a warp) raise no raw event and are seen with the next motion.
class X11Pointer : public Pointer {
public:
    /// Both outlive it.
    X11Pointer(X11Connection& connection, const X11Screens& screens);
    ~X11Pointer() override;

    QPointF location() const override;
    [[nodiscard]] std::unique_ptr<PointerWatch> watch(std::function<void()> moved) override;

private:
    class Watch;
    enum class State {
        off, ///< without watchers
        armed, ///< the next raw event wakes
        following ///< asking once a frame
    };

    std::optional<QPoint> pixel() const;
    void subscribe(bool on);
    void enter(State state);
    void leave(Watch* watch);
    void wake();
    void tick();
    bool tellIfMoved();

    X11Connection& m_connection;
    const X11Screens& m_screens;
    bool m_hasRawEvents = false;
    QObject m_context;
    QTimer m_frame;
    State m_state = State::off;
    int m_stillFrames = 0;
    bool m_telling = false;
    QPoint m_told;
    mutable QPoint m_lastKnown;
    QList<Watch*> m_watches;
};

} // namespace kestro
