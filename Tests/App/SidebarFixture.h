#pragma once

#include "Kestro/Application/AppModel.h"
#include "Kestro/Style/Theme.h"
#include "Kestro/Surfaces/SidebarController.h"
#include "Tests/App/ModelFixture.h"

#include <QGuiApplication>
#include <QPointF>
#include <QQmlEngine>

namespace kestro::test {

/// The dock on a screen of 1920 by 1080 with Stats and AI on it: its strip is 52 points thick.
class SidebarFixture : public ModelFixture {
protected:
    static constexpr QPointF away{ 400, 540 };

    void start(const QVariantMap& preferences = {})
    {
        platform.screens.setOne({ 1920, 1080 });
        platform.panels.adopted.clear(); // of an earlier start
        platform.pointer.at = away;
        platform.preferences.values = preferences;
        platform.preferences.values[QStringLiteral("agentsEnabled")] = true;
        theme = std::make_unique<Theme>(platform.appearance);
        engine = std::make_unique<QQmlEngine>();
        theme->install(*engine);
        model = std::make_unique<AppModel>(platform.ports(), Folders::under(home.path()));
        sidebar = std::make_unique<SidebarController>(*model, *engine);
        sidebar->setActive(true);
        model->start();
        platform.loop.turn();
    }
    ~SidebarFixture() override
    {
        sidebar.reset();
        model.reset();
    }
    void set(const char* key, const QVariant& value)
    {
        platform.preferences.setValue(QString::fromLatin1(key), value);
        platform.loop.turn();
    }
    /// As the strip's own window tells it: the pointer crossed its border.
    void enter(QPointF point)
    {
        platform.pointer.moveTo(point);
        QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QCoreApplication::sendEvent(&strip(), &event);
        platform.loop.turn();
    }
    const SidebarFrame& frame() const { return *sidebar->state().frame(); }
    QRegion painted() const { return sidebar->state().outline().region(sidebar->state().dockRect()); }
    static QWindow* window(const char* title)
    {
        for (QWindow* each : QGuiApplication::allWindows()) {
            if (each->title() == QLatin1String(title))
                return each;
        }
        return nullptr;
    }
    QWindow& strip() const { return *platform.panels.adopted.first(); }

    std::unique_ptr<Theme> theme;
    std::unique_ptr<QQmlEngine> engine;
    std::unique_ptr<SidebarController> sidebar;
};

} // namespace kestro::test
