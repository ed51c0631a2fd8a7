#include "Kestro/Launch/AppDelegate.h"
#include "Kestro/Settings/SettingsPanes.h"
#include "Tests/Support/Fakes.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gmock/gmock.h>

namespace kestro {

namespace {

using test::FakePlatform;

TEST(AppearanceSettingsTest, listsTheScreensAndTheOneThatIsMissing)
{
    FakePlatform platform;
    const AppearanceSettings settings(platform.preferences, platform.screens);
    const auto titles = [&] {
        QStringList all;
        for (const QVariant& each : settings.screens())
            all.append(each.toMap().value(QStringLiteral("title")).toString());
        return all.join(QLatin1Char('|'));
    };
    const auto named = [](const char* name) {
        Screen screen;
        screen.name = QLatin1String(name);
        return screen;
    };
    EXPECT_EQ(titles(), QStringLiteral("Main screen"));
    platform.screens.screens = { named("A"), named("B"), named("B"), named("") };
    EXPECT_EQ(titles(), QStringLiteral("Main screen|A|B"));
    platform.preferences.setValue(QStringLiteral("sidebarScreen"), QStringLiteral("C"));
    EXPECT_EQ(titles(), QStringLiteral("Main screen|A|B|C (disconnected) — using main screen"));
}

/// The window as the delegate opens it, on a screen of 1920 by 1080.
class SettingsWindowTest : public testing::Test {
protected:
    void start(QSizeF screen = { 1920, 1080 })
    {
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
        platform.screens.setOne(screen);
        delegate = std::make_unique<AppDelegate>(platform.ports(), Folders::under(home.path()));
        delegate->applicationDidFinishLaunching();
        platform.loop.turn();
    }
    static QWindow* window(const char* title = "Kestro Settings")
    {
        for (QWindow* each : QGuiApplication::allWindows()) {
            if (each->title() == QLatin1String(title))
                return each;
        }
        return nullptr;
    }
    QWindow& open()
    {
        delegate->model().host().openSettings();
        EXPECT_TRUE(window());
        return *window();
    }
    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(window(), key, modifiers);
        platform.loop.turn();
    }
    QVariant stored(const char* key) const { return platform.preferences.values.value(QLatin1String(key)); }

    QTemporaryDir home;
    FakePlatform platform;
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(SettingsWindowTest, isMadeWhenOpenedAndGoesWhenClosed)
{
    start();
    EXPECT_FALSE(window());
    const QPointer<QWindow> first = &open();
    EXPECT_EQ(&open(), first) << "one is enough";
    const std::pair<Qt::Key, Qt::KeyboardModifiers> closers[] = { { Qt::Key_Escape, {} },
        { Qt::Key_W, Qt::ControlModifier } };
    for (const auto& [key, modifiers] : closers) {
        const QPointer<QWindow> opened = &open();
        type(key, modifiers);
        EXPECT_FALSE(opened);
    }
    open();
    type(Qt::Key_Comma);
    EXPECT_TRUE(window());
}

TEST_F(SettingsWindowTest, keepsItsSizeInsideTheScreen)
{
    const struct {
        QVariant width, height;
        QSize opens;
    } rows[] = {
        { {}, {}, { 780, 560 } },
        { 900.0, 600.0, { 900, 600 } },
        { 10.0, -4.0, { 640, 420 } },
        { 5000.0, 5000.0, { 1000 - 8, 700 - 36 } },
    };
    for (const auto& row : rows) {
        platform.preferences.values = { { QStringLiteral("settingsWidth"), row.width },
            { QStringLiteral("settingsHeight"), row.height } };
        start({ 1000, 700 });
        const QWindow& opened = open();
        EXPECT_EQ(opened.size(), row.opens);
        EXPECT_TRUE(QRect(0, 0, 1000, 700).contains(opened.geometry()));
        delegate.reset();
    }
}

TEST_F(SettingsWindowTest, theWindowOfTheAgentsIsMadeWhenOpenedAndGoesWhenClosed)
{
    platform.preferences.values[QStringLiteral("agentsEnabled")] = true;
    start({ 500, 400 });
    AppModel& model = delegate->model();
    const std::pair<Qt::Key, Qt::KeyboardModifiers> closers[] = { { Qt::Key_Escape, {} },
        { Qt::Key_W, Qt::ControlModifier } };
    for (const auto& [key, modifiers] : closers) {
        model.host().showCard(WidgetKind::ai);
        model.host().openWindow(WidgetKind::ai);
        EXPECT_FALSE(model.expanded()) << "the card gives way";
        const QPointer<QWindow> opened = window("AI");
        ASSERT_TRUE(opened);
        EXPECT_TRUE(QRect(0, 0, 500, 400).contains(opened->geometry()));
        model.host().openWindow(WidgetKind::ai);
        EXPECT_EQ(window("AI"), opened) << "one is enough";
        QTest::keyClick(opened, key, modifiers);
        platform.loop.turn();
        EXPECT_FALSE(opened);
    }
    model.host().openWindow(WidgetKind::ai);
    QTest::keyClick(window("AI"), Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(window("Kestro Settings"));
    model.host().openWindow(WidgetKind::timer);
    EXPECT_FALSE(window("Timer")) << "it has a card alone";
}

TEST_F(SettingsWindowTest, theTraysMenuOpensOnTheScreen)
{
    start({ 800, 600 });
    for (const QPointF at : { QPointF(0, 0), QPointF(799, 599), QPointF(799, 0), QPointF(400, 300) }) {
        Q_EMIT platform.statusItem.menuRequested(at);
        QWindow* menu = nullptr;
        for (QWindow* each : QGuiApplication::allWindows())
            menu = each->title() == QStringLiteral("Kestro Menu") ? each : menu;
        ASSERT_TRUE(menu);
        const QRect rows = menu->geometry().adjusted(24, 24, -24, -24); // without the room for its shadow
        EXPECT_TRUE(QRect(0, 0, 800, 600).contains(rows)) << rows.x() << ' ' << rows.y();
        QTest::keyClick(menu, Qt::Key_Escape);
        platform.loop.turn();
    }
}

TEST(GeneralSettingsTest, saysWhyALoginItemCannotBeSet)
{
    test::FakeLoginItem item;
    GeneralSettings settings(item);
    QSignalSpy changed(&settings, &GeneralSettings::changed);
    item.failure = QStringLiteral("No room");
    settings.setOpensAtLogin(true);
    EXPECT_FALSE(settings.opensAtLogin());
    EXPECT_EQ(settings.loginFailure(), QStringLiteral("No room"));
    EXPECT_EQ(changed.count(), 1) << "the switch is told that it did not turn";
    item.failure.reset();
    settings.setOpensAtLogin(true);
    EXPECT_EQ(settings.loginFailure(), QString());
    item.setEnabled(false);
    EXPECT_FALSE(settings.opensAtLogin());
    EXPECT_EQ(changed.count(), 4) << "by another program";
}

} // namespace

} // namespace kestro
