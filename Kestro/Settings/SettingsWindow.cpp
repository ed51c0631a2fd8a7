#include "Kestro/Settings/SettingsWindow.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Pointer.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Settings/SettingsPanes.h"
#include "KestroCore/Support/Geometry.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace kestro {

namespace {
constexpr double resizingRests = 0.5;
}

SettingsWindow::SettingsWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed)
    : m_model(model)
    , m_platform(model.platform())
    , m_closed(std::move(closed))
    , m_general(m_platform.loginItem)
    , m_appearance(m_platform)
    , m_layout(model)
    , m_surfaceShortcuts(model, [] { return QList{ ShortcutOwner::openNotch() }; })
    , m_itemShortcuts(model, ShortcutList::ofLayout(model))
{
    setTitle(QStringLiteral("Kestro Settings"));
    const QRect place = firstPlace();
    setMinimumSize(prefs::smallestSettings.boundedTo(place.size()));
    setGeometry(place);
    m_host = std::make_unique<HostingView>(*this, engine, QStringLiteral("Settings/SettingsView"),
        QVariantMap{ { QStringLiteral("model"), QVariant::fromValue(&model) },
            { QStringLiteral("settings"), QVariant::fromValue(this) } });
}

QRect SettingsWindow::firstPlace() const
{
    // What a window manager puts round it.
    constexpr int titleBar = 32;
    constexpr int border = 4;
    const QSizeF wanted(
        prefs::settingsWidth.read(m_platform.preferences), prefs::settingsHeight.read(m_platform.preferences));
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

void SettingsWindow::bringToFront()
{
    show();
    raise();
    requestActivate();
}

QVariantList SettingsWindow::panes(const QString& search) const
{
    QVariantList rows;
    for (const PaneEntry& each : settingsPanes(search)) {
        rows.append(QVariantMap{ { QStringLiteral("pane"), rawValue(each.pane) },
            { QStringLiteral("title"), each.title }, { QStringLiteral("symbol"), each.symbol },
            { QStringLiteral("view"), QStringLiteral("qrc:/qt-project.org/imports/Kestro/%1.qml").arg(each.view) } });
    }
    return rows;
}

void SettingsWindow::closeEvent(QCloseEvent* event)
{
    QQuickWindow::closeEvent(event);
    rememberSize();
    if (const auto closed = std::exchange(m_closed, nullptr))
        closed();
}

void SettingsWindow::keyPressEvent(QKeyEvent* event)
{
    // Whoever has the keyboard comes first: Escape closes an open list, and only the next one the window.
    event->ignore();
    QQuickWindow::keyPressEvent(event);
    if ((!activeFocusItem() || !event->isAccepted()) && command(*event))
        event->accept();
}

bool SettingsWindow::command(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Escape && modifiers == Qt::NoModifier) {
        close();
        return true;
    }
    if (modifiers != Qt::ControlModifier)
        return false;
    const int pane = event.key() - Qt::Key_1;
    if (pane >= 0 && pane < settingsPanes().size()) {
        m_model.setSettingsPane(settingsPanes()[pane].pane);
        return true;
    }
    switch (event.key()) {
    case Qt::Key_F:
        QMetaObject::invokeMethod(&m_host->root(), "search");
        return true;
    case Qt::Key_W:
        close();
        return true;
    case Qt::Key_Q:
        QCoreApplication::quit();
        return true;
    default:
        return false;
    }
}

void SettingsWindow::resizeEvent(QResizeEvent* event)
{
    QQuickWindow::resizeEvent(event);
    // Not at every step of the edge that is dragged.
    m_rememberWork = m_platform.loop.after(resizingRests, [this] { rememberSize(); });
}

void SettingsWindow::rememberSize()
{
    m_rememberWork.cancel();
    if (visibility() == Maximized || visibility() == FullScreen)
        return;
    const auto remember = [this](const Preference<int>& key, int points) {
        if (key.read(m_platform.preferences) != points)
            key.write(m_platform.preferences, points);
    };
    remember(prefs::settingsWidth, width());
    remember(prefs::settingsHeight, height());
}

} // namespace kestro
