#include "Platforms/Linux/X11/X11Panels.h"
#include "X11KeyboardDesktop.h"

#include <QKeyEvent>
#include <QRasterWindow>

namespace kestro {
namespace {

using namespace test;

class TypedInto : public QRasterWindow {
public:
    TypedInto() { setGeometry(100, 100, 200, 80); }
    xcb_window_t id() { return static_cast<xcb_window_t>(winId()); }

    QString text;

protected:
    void keyPressEvent(QKeyEvent* event) override { text += event->text(); }
};

class X11FocusTest : public X11KeyboardDesktop {
protected:
    void SetUp() override
    {
        X11KeyboardDesktop::SetUp();
        panels.adopt(window);
        window.show();
    }
    void takeFocus()
    {
        panels.takeFocus(window); // it need not be on the screen yet
        ASSERT_TRUE(waitFor([&] { return window.isActive() && hasFocus(window.id()); }));
    }

    X11Panels panels{ connection };
    TypedInto window;
};

TEST_F(X11FocusTest, IsTakenAndReturned)
{
    for (int i = 1; i <= 3; ++i) {
        SCOPED_TRACE(i);
        takeFocus();
        typed.clear();
        tap({ key::p });
        EXPECT_TRUE(waitFor([&] { return window.text.size() == i; }));
        peer.settle(focused);
        EXPECT_TRUE(hasFocus(window.id())) << "the window manager leaves it there";
        panels.takeFocus(window); // again, as who opens a second time does
        panels.returnFocus(window);
        EXPECT_TRUE(waitFor([&] { return !window.isActive(); }));
        settle();
        EXPECT_EQ(typed, Keys{ key::space });
        EXPECT_TRUE(hasFocus(focused));
    }
    EXPECT_EQ(window.text, QStringLiteral("ppp"));
}

TEST_F(X11FocusTest, StaysWithWhoHasGotItSince)
{
    takeFocus();
    const auto other = peer.open({ 600, 300, 200, 200 });
    focus(other);
    panels.returnFocus(window);
    peer.settle(other);
    EXPECT_TRUE(hasFocus(other));
}

TEST_F(X11FocusTest, GoesToAnotherWhereTheFirstHasGone)
{
    const auto other = peer.open({ 600, 300, 200, 200 });
    for (const bool closed : { false, true }) {
        SCOPED_TRACE(closed);
        const auto brief = peer.open({ 300, 600, 200, 200 });
        focus(brief);
        takeFocus();
        if (closed)
            peer.close(brief);
        else
            xcb_unmap_window(peer.raw, brief);
        peer.settle(other);
        panels.returnFocus(window);
        EXPECT_TRUE(waitFor([&] { return !window.isActive() && !hasFocus(window.id()); }));
        EXPECT_TRUE(connection.isAlive());
    }
}

} // namespace
} // namespace kestro
