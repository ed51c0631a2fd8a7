#include "Platforms/Linux/X11/X11ScreenSaver.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <xcb/screensaver.h>

namespace kestro {

X11ScreenSaver::X11ScreenSaver(X11Connection& connection)
{
    const auto* saver = connection.extension(xcb_screensaver_id);
    if (!saver)
        return;
    connection.onEvent(static_cast<uint8_t>(saver->first_event + XCB_SCREENSAVER_NOTIFY), this,
        [this](const xcb_generic_event_t& event) {
            const auto& notice = reinterpret_cast<const xcb_screensaver_notify_event_t&>(event);
            if (notice.state == XCB_SCREENSAVER_STATE_ON || notice.state == XCB_SCREENSAVER_STATE_OFF)
                setAsleep(notice.state == XCB_SCREENSAVER_STATE_ON);
        });
    xcb_screensaver_select_input(connection.raw(), connection.root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    const auto now = connection.reply(
        xcb_screensaver_query_info_reply, xcb_screensaver_query_info(connection.raw(), connection.root()));
    m_asleep = now && now->state == XCB_SCREENSAVER_STATE_ON;
}

void X11ScreenSaver::setAsleep(bool asleep)
{
    if (asleep == m_asleep)
        return;
    m_asleep = asleep;
    if (asleep)
        Q_EMIT screensDidSleep();
    else
        Q_EMIT screensDidWake();
}

} // namespace kestro
