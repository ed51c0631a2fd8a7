#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Widgets/Widget.h"

#include <QQuickWindow>
#include <functional>

namespace kestro {

class AppModel;

/// An ordinary window of the program, with a title bar and the keyboard. It lives while it is open: its owner is
/// told when it closes. A derived class fills it. Main thread.
class FullWindow : public QQuickWindow {
    Q_OBJECT
public:
    /// Stands in the middle of the screen that the pointer is on, and shows nothing yet. `closed` is called when the
    /// user has closed it; its owner may destroy it later. `model` must outlive it.
    FullWindow(AppModel& model, const QString& title, const WindowSize& size, std::function<void()> closed);

    /// Shows it, or raises it if it is open, and gives it the keyboard.
    void bringToFront();

protected:
    /// A key that neither the view nor the program's own commands took. Whether it was taken.
    virtual bool keyDown(const QKeyEvent&) { return false; }

    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRect firstPlace(QSizeF wanted) const;
    bool command(const QKeyEvent& event);
    void rememberSize();

    AppModel& m_model;
    const Platform& m_platform;
    WindowSize m_size;
    std::function<void()> m_closed;
    WorkItem m_rememberWork;
};

} // namespace kestro
