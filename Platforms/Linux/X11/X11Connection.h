#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSocketNotifier>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <xcb/xcb.h>

namespace kestro {

struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply or an event of the server's, freed with its owner.
template <class T> using XcbOwned = std::unique_ptr<T, XcbFree>;

/// A connection to the X server beside Qt's, for what Qt does not watch. Main thread.
///
/// Without a server, and once it has gone, everything stays callable: replies are null and no event comes.
class X11Connection : public QObject {
    Q_OBJECT
public:
    using Handler = std::function<void(const xcb_generic_event_t&)>;

    /// Whether an X server answers. Ask before a QGuiApplication is built for it, which aborts where none does.
    static bool displayAvailable();

    /// Connects to the display that the environment names.
    X11Connection();
    ~X11Connection() override;

    bool isAlive() const;
    xcb_connection_t* raw() const { return m_raw.get(); }
    xcb_window_t root() const { return m_root; }
    int screenNumber() const { return m_screenNumber; }

    /// The atom of that name, made where it does not exist; asked of the server once.
    xcb_atom_t atom(const QByteArray& name);

    /// The extension's numbers, or null where the server lacks it.
    const xcb_query_extension_reply_t* extension(xcb_extension_t& id);

    /// The reply to `cookie`, or null on an error: `connection.reply(xcb_get_property_reply, cookie)`.
    template <class Reply, class Cookie>
    XcbOwned<Reply> reply(Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie)
    {
        xcb_generic_error_t* error = nullptr;
        XcbOwned<Reply> result(fetch(raw(), cookie, &error));
        std::free(error);
        collectQueued();
        return result;
    }

    /// Whether the server took the request: `connection.accepted(xcb_grab_key_checked(...))`.
    bool accepted(xcb_void_cookie_t checked);

    void flush();

    /// The server's time now, asked of it.
    xcb_timestamp_t serverTime();

    /// Adds events of a window to those that are selected already; a client has one mask a window, which a plain
    /// request overwrites. Held by an X11EventSelection, which takes them back.
    void selectEvents(xcb_window_t window, uint32_t events);
    void deselectEvents(xcb_window_t window, uint32_t events);

    /// Calls `handler` for each event of that number for as long as `context` lives.
    void onEvent(uint8_t type, QObject* context, Handler handler);
    /// The same for the events of the extensions that number them themselves.
    void onGenericEvent(uint8_t extension, uint16_t type, QObject* context, Handler handler);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    struct Registration {
        uint32_t key;
        QPointer<QObject> context;
        Handler handler;
    };

    void applySelections(xcb_window_t window);
    void collectQueued();
    void drain();
    XcbOwned<xcb_generic_event_t> nextEvent();
    void dispatch(const xcb_generic_event_t& event);

    int m_screenNumber = 0;
    std::unique_ptr<xcb_connection_t, Disconnect> m_raw;
    xcb_window_t m_root = XCB_NONE;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    xcb_window_t m_clock = XCB_NONE; ///< where a change of a property tells the time
    QHash<xcb_window_t, QList<uint32_t>> m_selections; ///< masks by window
    std::deque<XcbOwned<xcb_generic_event_t>> m_queued;
    std::list<Registration> m_handlers; // a list: handlers are added while one runs
    bool m_drainPosted = false;
    int m_depth = 0;
};

} // namespace kestro
