#pragma once

#include "Kestro/Platform/StatusItem.h"
#include "Platforms/Linux/X11/X11EventSelection.h"

namespace kestro {

class X11Connection;
class X11Screens;

/// The icon in a panel that takes windows in (the freedesktop.org system tray). Its menu is the program's: either
/// button asks for it. Without such a panel it waits for one.
class X11Tray final : public StatusItem {
    Q_OBJECT
public:
    /// Both outlive this.
    X11Tray(X11Connection& connection, const X11Screens& screens);
    ~X11Tray() override;

    void show(std::function<QImage(int)> icon, QList<MenuEntry> menu) override;
    void hide() override;

private:
    /// How a window is made so that the panel can have it inside.
    struct Visual {
        xcb_visualid_t id = XCB_NONE;
        uint8_t depth = 0;
        bool isTransparent = false;
    };

    void listen();
    void dock();
    void undock();
    Visual visualOf(xcb_window_t tray);
    void createWindow(const Visual& visual);
    void describeWindow();
    void paint();
    QImage background(QSize size);
    void reparented(xcb_window_t parent);
    void released(const xcb_button_release_event_t& event);

    X11Connection& m_connection;
    const X11Screens& m_screens;
    std::function<QImage(int)> m_icon; // none while hidden
    bool m_listening = false;
    X11EventSelection m_managers; ///< while shown: a panel that starts announces itself on the root
    xcb_window_t m_tray = XCB_NONE; // the panel's
    xcb_window_t m_window = XCB_NONE;
    xcb_colormap_t m_colours = XCB_NONE;
    xcb_gcontext_t m_context = XCB_NONE;
    Visual m_visual;
    bool m_docked = false;
    QSize m_size;
};

} // namespace kestro
