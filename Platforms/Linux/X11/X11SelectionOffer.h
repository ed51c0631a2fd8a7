#pragma once

#include "Platforms/Linux/X11/X11SelectionLink.h"

#include <QMap>
#include <list>

namespace kestro {

/// What is offered while a selection is ours, to programs that ask for it at once or late, one target or many, and
/// take it in pieces as slowly as they like. One thread.
class X11SelectionOffer {
public:
    explicit X11SelectionOffer(X11SelectionLink& link, xcb_atom_t selection);

    /// Takes the selection and offers `data`, by target, until somebody else takes it.
    void take(QMap<QByteArray, QByteArray> data);
    bool isOurs() const { return m_since != XCB_CURRENT_TIME; }
    /// Asks a clipboard manager, where one runs, to keep it all; true while its answer is to be waited for. Then the
    /// loop goes on until `isHandedOver`.
    bool handOver();
    bool isHandedOver() const { return m_isHandedOver; }

    bool handle(const xcb_generic_event_t& event);
    /// Gives up on programs that have stopped taking their pieces.
    void expire(X11SelectionLink::Clock::time_point now);
    std::optional<X11SelectionLink::Clock::time_point> deadline() const;

private:
    /// What one program takes in pieces; it holds its own share of the data, which may be replaced meanwhile.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        QByteArray data;
        qsizetype sent = 0;
        X11SelectionLink::Clock::time_point until;
    };

    void answer(const xcb_selection_request_event_t& request);
    bool put(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool putMany(xcb_window_t requestor, xcb_atom_t property);
    void putData(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type, const QByteArray& data);
    bool putNextPiece(const xcb_property_notify_event_t& notice);
    QList<uint32_t> targets();
    void release(xcb_window_t requestor);

    X11SelectionLink& m_link;
    xcb_atom_t m_selection;
    xcb_atom_t m_targets, m_multiple, m_timestamp, m_saveTargets, m_incremental;
    QMap<QByteArray, QByteArray> m_data;
    QHash<xcb_atom_t, QByteArray> m_byAtom;
    xcb_timestamp_t m_since = XCB_CURRENT_TIME; ///< the moment of our taking it, while it is ours
    std::list<Transfer> m_transfers;
    bool m_isHandedOver = false;
};

} // namespace kestro
