#pragma once

#include "KestroCore/Support/FileDescriptor.h"
#include "Platforms/Linux/X11/X11SelectionOffer.h"
#include "Platforms/Linux/X11/X11SelectionPrograms.h"
#include "Platforms/Linux/X11/X11SelectionReader.h"

#include <functional>
#include <mutex>
#include <vector>
#include <xcb/xfixes.h>

namespace kestro {

/// The life of the clipboard's thread: it sleeps until the server or `post` has something for it.
class X11SelectionThread {
public:
    using Changed = std::function<void(PasteboardOffer)>;
    using Done = std::function<void(std::optional<QByteArray>)>;

    /// `changed` is called on the thread. `patience` is for programs that are silent.
    X11SelectionThread(std::chrono::milliseconds patience, Changed changed);

    /// Runs `work` on the thread; from any thread.
    void post(std::function<void()> work);
    /// Returns after `end`, when what is ours was handed to a clipboard manager; at most a second later.
    void run();
    /// From any thread.
    void end();

    // On the thread alone
    void watch(bool on);
    void read(qint64 changeCount, const QString& type, qint64 limit, Done done);
    void write(const QList<PasteboardItem>& items);

private:
    void connect();
    void runPosted();
    bool handleEvents();
    void handle(const xcb_generic_event_t& event);
    void ownerChanged(xcb_window_t owner);
    void told(qint64 changeCount, xcb_window_t owner, const X11PropertyData& targets);
    void expire();
    void wait(std::optional<X11SelectionLink::Clock::time_point> until);
    void handOver();

    std::chrono::milliseconds m_patience;
    Changed m_changed;
    FileDescriptor m_wake;
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_posted;
    bool m_ending = false;

    struct Connected {
        X11SelectionLink link;
        xcb_atom_t clipboard{ link.atom("CLIPBOARD") };
        X11SelectionReader reader{ link };
        X11SelectionOffer offer{ link, clipboard };
        X11SelectionPrograms programs{ link };
        uint8_t firstFixesEvent = 0;
    };
    std::unique_ptr<Connected> m_x; ///< made by the thread, when something is first asked of it
    bool m_isWatching = false;
    qint64 m_changeCount = 0;
    QByteArrayList m_targets; ///< of the present change
};

} // namespace kestro
