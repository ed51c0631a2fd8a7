#include "Kestro/Application/AppModel.h"
#include "Kestro/Settings/LayoutList.h"
#include "Kestro/Settings/ShortcutList.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"
#include "Tests/Support/Fakes.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace kestro {

namespace {

using test::FakePlatform;

class SettingsListsTest : public testing::Test {
protected:
    SettingsListsTest()
    {
        for (const char* name : { "Editor", "Terminal", "Text Tools" })
            platform.workspace.names[QStringLiteral("/%1.desktop").arg(QLatin1StringView(name))] =
                QLatin1StringView(name);
        model = std::make_unique<AppModel>(platform.ports(), Folders::under(home.path()));
        model->start();
        platform.loop.turn();
    }
    QString rows(const QAbstractItemModel& list, int role) const
    {
        QStringList names;
        for (int row = 0; row < list.rowCount(); ++row)
            names.append(list.index(row, 0).data(role).toString());
        return names.join(u'|');
    }
    static QObject* recorder(const QAbstractItemModel& list, int row, int role)
    {
        return list.index(row, 0).data(role).value<ShortcutRecorder*>();
    }

    QTemporaryDir home;
    FakePlatform platform;
    std::unique_ptr<AppModel> model;
};

TEST_F(SettingsListsTest, whatIsFullSaysSo)
{
    LayoutList list(*model);
    EXPECT_EQ(QStringLiteral("ai"), list.addableWidgets().value(0).toMap().value(QStringLiteral("value")));
    list.addWidget(QStringLiteral("ai"));
    EXPECT_TRUE(model->agents().agents()->isOn());
    const auto offered = [&list] {
        QStringList kinds;
        for (const QVariant& each : list.addableWidgets())
            kinds.append(each.toMap().value(QStringLiteral("value")).toString());
        return kinds;
    };
    EXPECT_FALSE(offered().contains(QStringLiteral("ai")));
    EXPECT_TRUE(offered().contains(QStringLiteral("timer")));
    while (list.canAddDivider())
        list.addDivider();
    EXPECT_EQ(8, model->launcher().store().dividerCount());
    list.addApps(QStringList(13, QStringLiteral("/Editor.desktop")));
    EXPECT_TRUE(list.canAddItem());
    EXPECT_EQ(QString(), list.message());
    list.addApps({ QStringLiteral("/Terminal.desktop"), QStringLiteral("/Editor.desktop") });
    EXPECT_EQ(16, model->launcher().store().itemCount());
    EXPECT_FALSE(list.canAddItem());
    EXPECT_EQ(QStringLiteral("The layout holds up to 16 items"), list.message());
    list.remove(0);
    EXPECT_EQ(QString(), list.message());
}

TEST_F(SettingsListsTest, applicationsAreNarrowedAndChosenSeveralAtATime)
{
    LayoutApps apps(platform.workspace);
    EXPECT_EQ(QStringLiteral("Editor|Terminal|Text Tools"), rows(apps, LayoutApps::Name));
    apps.toggle(0);
    const std::pair<const char*, const char*> table[] = { { "t", "Editor|Terminal|Text Tools" },
        { "te", "Terminal|Text Tools" }, { " TOOLS  te ", "Text Tools" }, { "x y", "" }, { "tools", "Text Tools" } };
    for (const auto& [typed, shown] : table) {
        apps.setFilter(QString::fromLatin1(typed));
        EXPECT_EQ(QString::fromLatin1(shown), rows(apps, LayoutApps::Name)) << typed;
    }
    apps.toggle(0);
    EXPECT_EQ(QStringList({ QStringLiteral("/Editor.desktop"), QStringLiteral("/Text Tools.desktop") }), apps.chosen());
    apps.setFilter({});
    apps.toggle(0);
    EXPECT_EQ(QStringList(QStringLiteral("/Text Tools.desktop")), apps.chosen());
}

TEST_F(SettingsListsTest, shortcutsFollowTheLayout)
{
    model->shortcuts().start();
    ShortcutList items(*model, QStringLiteral("Layout"));
    const QAbstractItemModelTester tester(&items, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model->launcher().addDivider({});
    model->launcher().add({ QUuid::createUuid(), LaunchItem::App{ QStringLiteral("/Editor.desktop") } });
    EXPECT_EQ(QStringLiteral("Stats|Editor"), rows(items, ShortcutList::Title));

    // The same shortcut in two lists, and one owner a combination.
    LayoutList layout(*model);
    auto* here = items.index(1, 0).data(ShortcutList::Recorder).value<ShortcutRecorder*>();
    auto* there = layout.index(2, 0).data(LayoutList::Recorder).value<ShortcutRecorder*>();
    here->toggle();
    platform.keyboard.press(1, 1 << 19);
    EXPECT_EQ(QStringLiteral("⌥S"), there->label());
    auto* stats = layout.index(0, 0).data(LayoutList::Recorder).value<ShortcutRecorder*>();
    stats->toggle();
    platform.keyboard.press(1, 1 << 19);
    EXPECT_EQ(QStringLiteral("Already used by Editor"), stats->error());
    there->clear();
    EXPECT_EQ(QStringLiteral("Record Shortcut"), here->label());
}

} // namespace

} // namespace kestro
