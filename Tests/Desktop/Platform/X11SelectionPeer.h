#pragma once

#include "X11Desktop.h"

#include <QMap>
#include <optional>

namespace kestro::test {

/// Another program that copies and pastes, well or badly behaved. It serves while the loop turns.
class X11SelectionPeer {
public:
    enum class Manner {
        normal,
        isSilent,
        refuses,
        givesNothing,
        sendsTooMuch,
        sendsWithoutEnd,
        diesHalfway,
        isReplaced,
        liesAboutTargets
    };

    X11SelectionPeer()
    {
        connection.onEvent(XCB_SELECTION_REQUEST, &m_context,
            [this](const auto& event) { requested(reinterpret_cast<const xcb_selection_request_event_t&>(event)); });
        connection.onEvent(XCB_SELECTION_NOTIFY, &m_context,
            [this](const auto& event) { notified(reinterpret_cast<const xcb_selection_notify_event_t&>(event)); });
        connection.onEvent(XCB_PROPERTY_NOTIFY, &m_context,
            [this](const auto& event) { changed(reinterpret_cast<const xcb_property_notify_event_t&>(event)); });
    }

    void own(const QMap<QByteArray, QByteArray>& data, Manner manner = Manner::normal)
    {
        m_data = data;
        m_manner = manner;
        m_asked.clear();
        m_streams.clear();
        takeOver();
    }
    /// The targets that it was asked for since it owns.
    QByteArrayList asked() const { return m_asked; }

    /// Asks whoever owns the clipboard; what is announced in pieces waits for `takePieces`.
    void ask(const char* target) { convert(atom("CLIPBOARD"), target, target); }
    bool isGettingPieces() const { return m_isWaiting; }
    QByteArray takePieces()
    {
        m_isWaiting = false;
        m_takesPieces = true;
        xcb_delete_property(m_raw, m_window, m_waitingPlace);
        connection.flush();
        EXPECT_TRUE(waitFor([this] { return m_got.contains(m_waitingPlace); }));
        return m_got.take(m_waitingPlace).value_or(QByteArray());
    }
    /// All at once, each into a place of its own; nothing for those that were refused.
    QList<std::optional<QByteArray>> askMany(const QByteArrayList& targets)
    {
        m_takesPieces = true;
        QList<uint32_t> pairs;
        for (const QByteArray& target : targets)
            pairs << atom(target) << atom("PLACE " + target);
        const xcb_atom_t list = atom("PAIRS");
        xcb_change_property(m_raw, XCB_PROP_MODE_REPLACE, m_window, list, atom("ATOM_PAIR"), 32, uint32_t(pairs.size()),
            pairs.constData());
        convert(atom("CLIPBOARD"), "MULTIPLE", "PAIRS");
        EXPECT_TRUE(waitFor([&] { return m_got.contains(list); }));
        const QByteArray outcome = m_got.take(list).value_or(QByteArray());
        const auto* places = reinterpret_cast<const uint32_t*>(outcome.constData());
        QList<std::optional<QByteArray>> answers;
        for (qsizetype i = 0; i < targets.size(); ++i) {
            const xcb_atom_t place = places[2 * i + 1];
            if (place != XCB_ATOM_NONE) {
                receive(place);
                EXPECT_TRUE(waitFor([&] { return m_got.contains(place); })) << targets[i].constData();
            }
            answers.append(place == XCB_ATOM_NONE ? std::nullopt : m_got.take(place));
        }
        return answers;
    }

    /// Keeps what programs leave behind when they end.
    void manageClipboard()
    {
        m_takesPieces = true;
        xcb_set_selection_owner(m_raw, m_window, atom("CLIPBOARD_MANAGER"), connection.serverTime());
        connection.flush();
    }
    std::optional<QByteArray> saved(const char* target) { return m_got.value(atom(target)); }

    X11Connection connection;

private:
    struct Stream {
        xcb_window_t requestor;
        xcb_atom_t property;
        int pieces = 0;
    };

    xcb_atom_t atom(const QByteArray& name) { return connection.atom(name); }
    xcb_window_t makeWindow() const
    {
        const xcb_window_t window = xcb_generate_id(m_raw);
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(m_raw, XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1, 0,
            XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        return window;
    }
    void takeOver()
    {
        xcb_set_selection_owner(m_raw, m_window, atom("CLIPBOARD"), connection.serverTime());
        connection.flush();
    }

    void requested(const xcb_selection_request_event_t& request)
    {
        if (request.selection == atom("CLIPBOARD_MANAGER"))
            return save(request);
        const auto reply = connection.reply(xcb_get_atom_name_reply, xcb_get_atom_name(m_raw, request.target));
        const QByteArray target(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()));
        m_asked.append(target);
        xcb_atom_t property = request.property;
        if (target == "TARGETS")
            putTargets(request);
        else if (m_manner == Manner::isSilent)
            return;
        else if (!putData(request, m_data.value(target)))
            property = XCB_ATOM_NONE;
        notify(request, property);
    }
    void putTargets(const xcb_selection_request_event_t& request)
    {
        if (m_manner == Manner::liesAboutTargets)
            return put(request.requestor, request.property, "nonsense");
        QList<uint32_t> targets{ atom("TARGETS") };
        for (const QByteArray& target : m_data.keys())
            targets.append(atom(target));
        xcb_change_property(m_raw, XCB_PROP_MODE_REPLACE, request.requestor, request.property, XCB_ATOM_ATOM, 32,
            uint32_t(targets.size()), targets.constData());
    }
    bool putData(const xcb_selection_request_event_t& request, const QByteArray& data)
    {
        switch (m_manner) {
        case Manner::refuses:
            return false;
        case Manner::givesNothing:
            return true;
        case Manner::sendsTooMuch:
            put(request.requestor, request.property, QByteArray(2 << 20, 'x'));
            return true;
        case Manner::isReplaced:
            m_window = makeWindow();
            takeOver();
            put(request.requestor, request.property, "of the one before");
            return true;
        case Manner::sendsWithoutEnd:
        case Manner::diesHalfway: {
            const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE, size = 2U << 30;
            xcb_change_window_attributes(m_raw, request.requestor, XCB_CW_EVENT_MASK, &events);
            m_streams.append({ request.requestor, request.property });
            xcb_change_property(
                m_raw, XCB_PROP_MODE_REPLACE, request.requestor, request.property, atom("INCR"), 32, 1, &size);
            return true;
        }
        default:
            put(request.requestor, request.property, data);
            return true;
        }
    }
    void put(xcb_window_t window, xcb_atom_t property, const QByteArray& data) const
    {
        xcb_change_property(m_raw, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING, 8, uint32_t(data.size()),
            data.constData());
    }
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property)
    {
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.time = request.time;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = property;
        xcb_send_event(m_raw, false, request.requestor, 0, reinterpret_cast<const char*>(&notice));
        connection.flush();
    }

    // As a clipboard manager
    void save(const xcb_selection_request_event_t& request)
    {
        m_manager = request;
        convert(atom("CLIPBOARD"), "UTF8_STRING", "UTF8_STRING");
        convert(atom("CLIPBOARD"), "image/png", "image/png");
    }

    // As the one who pastes
    void convert(xcb_atom_t selection, const char* target, const char* place)
    {
        xcb_convert_selection(m_raw, m_window, selection, atom(target), atom(place), connection.serverTime());
        connection.flush();
    }
    void notified(const xcb_selection_notify_event_t& event)
    {
        if (event.property != XCB_ATOM_NONE)
            receive(event.property);
    }
    void receive(xcb_atom_t place)
    {
        const auto data = connection.reply(
            xcb_get_property_reply, xcb_get_property(m_raw, m_takesPieces, m_window, place, XCB_ATOM_ANY, 0, 1 << 24));
        if (!data || data->type == XCB_ATOM_NONE)
            return;
        if (data->type == atom("INCR")) {
            m_pieces.insert(place, {});
            m_isWaiting = !m_takesPieces;
            m_waitingPlace = place;
            return;
        }
        const QByteArray bytes(
            static_cast<const char*>(xcb_get_property_value(data.get())), xcb_get_property_value_length(data.get()));
        if (!m_pieces.contains(place))
            return finish(place, bytes);
        m_pieces[place].append(bytes);
        if (bytes.isEmpty())
            finish(place, m_pieces.take(place));
    }
    void finish(xcb_atom_t place, const QByteArray& data)
    {
        m_got.insert(place, data);
        if (m_manager && m_got.contains(atom("UTF8_STRING")) && m_got.contains(atom("image/png"))) {
            notify(*m_manager, m_manager->property);
            m_manager.reset();
        }
    }
    void changed(const xcb_property_notify_event_t& event)
    {
        if (event.window == m_window && event.state == XCB_PROPERTY_NEW_VALUE && m_pieces.contains(event.atom))
            return receive(event.atom);
        for (Stream& stream : m_streams) {
            const bool isMeant = stream.requestor == event.window && stream.property == event.atom;
            if (!isMeant || event.state != XCB_PROPERTY_DELETE)
                continue;
            if (m_manner == Manner::sendsWithoutEnd || stream.pieces++ == 0)
                put(stream.requestor, stream.property, QByteArray(65536, 'x'));
            connection.flush();
        }
    }

    xcb_connection_t* m_raw = connection.raw();
    xcb_window_t m_window = makeWindow();
    QMap<QByteArray, QByteArray> m_data;
    Manner m_manner = Manner::normal;
    QByteArrayList m_asked;
    QList<Stream> m_streams;
    QHash<xcb_atom_t, QByteArray> m_pieces;
    QHash<xcb_atom_t, std::optional<QByteArray>> m_got;
    xcb_atom_t m_waitingPlace = XCB_ATOM_NONE;
    bool m_isWaiting = false;
    bool m_takesPieces = false;
    std::optional<xcb_selection_request_event_t> m_manager;
    QObject m_context;
};

} // namespace kestro::test
