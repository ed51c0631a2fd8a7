#pragma once

#include "Kestro/Platform/Panels.h"

#include <QHash>
#include <QList>
#include <optional>
#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// Panels as managed windows of the dock type, and whether a compositor runs.
class X11Panels : public Panels {
    Q_OBJECT
public:
    /// Needs a QGuiApplication; `connection` outlives it.
    explicit X11Panels(X11Connection& connection);

    void adopt(QWindow& window) override;
    void setShape(QWindow& window, const QRegion& shape) override;
    void takeFocus(QWindow& window) override;
    void returnFocus(QWindow& window) override;
    bool isComposited() const override { return m_composited; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Rectangles = QList<xcb_rectangle_t>;

    /// The wanted state of a window, and the state that its X window has.
    struct Entry {
        bool isPanel = false;
        bool beingShown = false; ///< mapped or about to be, and not seen on the screen yet
        bool focusWanted = false; ///< as soon as it is on the screen
        xcb_window_t focusBefore = XCB_NONE; ///< the window that had the focus before
        std::optional<QRegion> shape; ///< nothing: the whole window
        std::optional<Rectangles> input;
        std::optional<Rectangles> bounding;
    };

    Entry& entryOf(QWindow& window);
    void applyShape(QWindow& window, Entry& entry);
    void applyAllShapes();
    void surfaceCreated(QWindow& window);
    void aboutToShow(QWindow& window);
    void appeared(QWindow& window);
    void giveFocus(QWindow& window, Entry& entry);
    void watchCompositor();
    bool compositorRuns() const;

    X11Connection& m_connection;
    QHash<QObject*, Entry> m_entries; // QObject: a window is taken out while it is being destroyed
    bool m_composited = false;
};

} // namespace kestro
