#include "Kestro/Surfaces/FullWindow.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Appearance.h"
#include "Kestro/Platform/Pointer.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Surfaces/WindowCommand.h"
#include "KestroCore/Support/Geometry.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>

namespace kestro {

namespace {
constexpr double resizingRests = 0.5;
}

FullWindow::FullWindow(AppModel& model, const QString& title, const WindowSize& size, std::function<void()> closed)
    : m_model(model)
    , m_platform(model.platform())
    , m_size(size)
    , m_closed(std::move(closed))
{
    const auto stored = [this](const Preference<std::optional<int>>* key) {
        return key ? key->read(m_platform.preferences) : std::nullopt;
    };
    setTitle(title);
    const double growth = m_platform.appearance.look().growth();
    const QSize first = size.first * growth;
    const QSize smallest = size.smallest * growth;
    const QSize wanted(stored(size.width).value_or(first.width()), stored(size.height).value_or(first.height()));
    const QRect place = firstPlace(wanted.expandedTo(smallest));
    setMinimumSize(smallest.boundedTo(place.size()));
    setGeometry(place);
}

QRect FullWindow::firstPlace(QSizeF wanted) const
{
    // The window manager's frame.
    constexpr int titleBar = 32;
    constexpr int border = 4;
    const QList<Screen> screens = m_platform.screens.all();
    if (screens.isEmpty())
        return QRect(QPoint(), wanted.toSize());
    const QPointF pointer = m_platform.pointer.location();
    const auto under = std::find_if(screens.begin(), screens.end(),
        [&](const Screen& each) { return geometry::contains(each.info.frame, pointer); });
    const QRectF free =
        (under == screens.end() ? screens.first() : *under).visibleFrame.adjusted(border, border, -border, -titleBar);
    const QSizeF size = wanted.boundedTo(free.size());
    const QPointF corner = free.center() - QPointF(size.width(), size.height()) / 2;
    return m_platform.screens.toWindowSystem(QRectF(corner, size)).toRect();
}

void FullWindow::bringToFront()
{
    show();
    raise();
    requestActivate();
}

void FullWindow::closeEvent(QCloseEvent* event)
{
    QQuickWindow::closeEvent(event);
    rememberSize();
    if (const auto closed = std::exchange(m_closed, nullptr))
        closed();
}

void FullWindow::keyPressEvent(QKeyEvent* event)
{
    // The focused control comes first: Escape closes an open list, and only the next Escape the window.
    event->ignore();
    QQuickWindow::keyPressEvent(event);
    if ((!activeFocusItem() || !event->isAccepted()) && (command(*event) || keyDown(*event)))
        event->accept();
}

bool FullWindow::command(const QKeyEvent& event)
{
    const auto command = windowCommand(event);
    if (!command)
        return false;
    switch (*command) {
    case WindowCommand::close:
        close();
        break;
    case WindowCommand::openSettings:
        m_model.host().openSettings();
        break;
    case WindowCommand::quit:
        QCoreApplication::quit();
        break;
    }
    return true;
}

void FullWindow::resizeEvent(QResizeEvent* event)
{
    QQuickWindow::resizeEvent(event);
    // Not at every step of the edge that is dragged.
    if (m_size.width)
        m_rememberWork = m_platform.loop.after(resizingRests, [this] { rememberSize(); });
}

void FullWindow::rememberSize()
{
    m_rememberWork.cancel();
    if (!m_size.width || visibility() == Maximized || visibility() == FullScreen)
        return;
    const auto remember = [this](const Preference<std::optional<int>>& key, int points) {
        if (key.read(m_platform.preferences) != points)
            key.write(m_platform.preferences, points);
    };
    remember(*m_size.width, width());
    remember(*m_size.height, height());
}

} // namespace kestro
