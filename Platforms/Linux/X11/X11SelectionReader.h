#pragma once

#include "Platforms/Linux/X11/X11SelectionLink.h"

#include <functional>
#include <list>

namespace kestro {

/// What other programs offer, asked of them one target at a time. Each question has a window of its own: an answer that
/// comes too late reaches nobody. One thread.
class X11SelectionReader {
public:
    struct Limits {
        qint64 bytes;
        std::chrono::milliseconds silence{ 5000 }; ///< between two signs of life
        std::chrono::milliseconds whole{ 30000 };
    };
    using Answer = std::function<void(std::optional<X11PropertyData>)>;

    explicit X11SelectionReader(X11SelectionLink& link);

    /// `answer` comes once, or never when the reader goes before.
    void ask(xcb_atom_t selection, xcb_atom_t target, const Limits& limits, Answer answer);
    /// What has been asked and not been answered at all counts as lost: it may be another owner who answers.
    void ownerChanged();

    bool handle(const xcb_generic_event_t& event);
    /// Gives up what has been silent for too long.
    void expire(X11SelectionLink::Clock::time_point now);
    /// The moment of the next `expire`, if any.
    std::optional<X11SelectionLink::Clock::time_point> deadline() const;
    void failAll();

private:
    struct Question {
        xcb_window_t window;
        Limits limits;
        Answer answer;
        X11SelectionLink::Clock::time_point silentUntil;
        X11SelectionLink::Clock::time_point until;
        bool isAnswered = false; ///< by some owner, who now sends
        bool isIncremental = false;
        X11PropertyData data{};
    };
    using Place = std::list<Question>::iterator;

    bool notified(const xcb_selection_notify_event_t& event);
    bool changed(const xcb_property_notify_event_t& event);
    void take(Place question);
    void takePiece(Place question);
    void finish(Place question, std::optional<X11PropertyData> data);
    Place find(xcb_window_t window);

    X11SelectionLink& m_link;
    xcb_atom_t m_place; ///< the property that answers are put into
    xcb_atom_t m_incremental;
    std::list<Question> m_questions;
};

} // namespace kestro
