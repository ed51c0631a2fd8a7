#include "Kestro/Layout/LauncherModel.h"

#include "Kestro/Layout/FaviconImage.h"
#include "Tests/Support/Fakes.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <gmock/gmock.h>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

LaunchItem itemOf(LaunchItem::Kind kind) { return { QUuid::createUuid(), std::move(kind) }; }
LaunchItem appAt(const char* path) { return itemOf(LaunchItem::App{ QString::fromUtf8(path) }); }
LaunchItem linkTo(const char* url) { return itemOf(LaunchItem::Link{ QUrl(QString::fromUtf8(url)), {} }); }
LaunchItem widgetOf(WidgetKind kind) { return itemOf(LaunchItem::Widget{ kind }); }

class Launcher : public testing::Test {
protected:
    LauncherModel& model()
    {
        if (!m_model)
            m_model.emplace(m_loop, m_preferences, m_workspace, m_fetcher, m_log, m_home.path());
        return *m_model;
    }
    /// What a new start would load.
    LauncherStore saved() const
    {
        return LauncherStore::decode(m_preferences.values.value(u"launcherItems"_qs).toByteArray()).store;
    }

    QTemporaryDir m_home;
    FakeLoop m_loop;
    FakePreferences m_preferences{ m_loop };
    FakeWorkspace m_workspace;
    FakeFetcher m_fetcher;
    RecordingLog m_log;
    std::optional<LauncherModel> m_model;
};

TEST_F(Launcher, corruptBytesAreSetAside)
{
    m_preferences.values = { { u"launcherItems"_qs, QByteArray("[{") },
        { u"launcherItems.corrupt"_qs, QByteArray("older") } };
    EXPECT_TRUE(model().store().items().isEmpty());
    EXPECT_EQ(m_preferences.values.value(u"launcherItems.corrupt"_qs), QByteArray("[{"));
    EXPECT_FALSE(m_preferences.values.contains(u"launcherItems.migrated"_qs));
    EXPECT_EQ(m_log.lines.size(), 1);
}

TEST_F(Launcher, aLinkThatDoesNotParseStaysInThePreferences)
{
    const QByteArray link =
        R"({"id":"00000001-0000-0000-0000-000000000001","kind":{"link":{"url":"http://[","title":""}}})";
    m_preferences.values = { { u"launcherItems"_qs, QByteArray('[' + link + ']') } };
    model().migrate({});
    EXPECT_EQ(model().store().items().size(), 1);
    EXPECT_FALSE(m_preferences.values.contains(u"launcherItems.corrupt"_qs));
    EXPECT_TRUE(m_preferences.values.value(u"launcherItems"_qs).toByteArray().startsWith('[' + link + ",{"));
    EXPECT_EQ(m_log.lines.size(), 2) << "the link, the migration";
}

TEST_F(Launcher, everyChangeIsSavedAndToldOnce)
{
    const LaunchItem one = appAt("/one.desktop"), two = appAt("/two.desktop"), three = appAt("/three.desktop");
    QSignalSpy changed(&model(), &LauncherModel::storeChanged);
    const QList<QUuid> all{ one.id, two.id, three.id };
    const auto expectChange = [&](int count, const QList<LaunchItem>& items) {
        EXPECT_EQ(changed.size(), count);
        changed.clear();
        EXPECT_EQ(model().store().items(), items);
        EXPECT_EQ(saved(), model().store());
    };
    EXPECT_EQ(model().add(one), std::nullopt);
    EXPECT_EQ(model().add(two, 0), std::nullopt);
    expectChange(2, { two, one });
    EXPECT_TRUE(model().insert({ three, appAt("/one.desktop") }, 1, { two.id, one.id }));
    expectChange(1, { two, three, one });
    model().move(one.id, 0, all);
    expectChange(1, { one, two, three });
    model().move(one.id, 0, all);
    expectChange(0, { one, two, three });
    model().moveBy(three.id, -1, all);
    expectChange(1, { one, three, two });
    model().moveBy(one.id, -1, { one.id, three.id });
    EXPECT_TRUE(model().insert({ appAt("/one.desktop") }, 0, {})); // nothing but a repeat
    expectChange(0, { one, three, two });
    model().remove(three.id);
    expectChange(1, { one, two });
    model().remove(three.id);
    expectChange(0, { one, two });
}

TEST_F(Launcher, refusalsAreMessages)
{
    EXPECT_EQ(model().add(widgetOf(WidgetKind::colorPicker)), std::nullopt);
    EXPECT_EQ(model().add(widgetOf(WidgetKind::colorPicker)), u"Color Picker is already in the layout"_qs);
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(model().add(appAt("/a")), std::nullopt);
    EXPECT_EQ(model().add(appAt("/a")), u"The layout holds up to 16 items"_qs);
    EXPECT_FALSE(model().insert({ appAt("/b") }, 0, {}));
    const QUuid first = model().store().items().first().id;
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(model().addDivider(i == 0 ? first : QUuid()), std::nullopt);
    EXPECT_EQ(model().addDivider({}), u"The layout holds up to 8 dividers"_qs);
    ASSERT_EQ(saved().items().size(), 24);
    EXPECT_TRUE(saved().items().at(1).isDivider()); // behind its item
    EXPECT_TRUE(saved().items().at(23).isDivider());
}

TEST_F(Launcher, migratesALayoutWithoutWidgetsOnce)
{
    model().migrate({ WidgetKind::ai });
    EXPECT_EQ(saved().itemCount(), 2);
    for (const LaunchItem& item : QList(model().store().items()))
        model().remove(item.id);
    model().migrate({ WidgetKind::ai });
    EXPECT_EQ(saved().itemCount(), 0);

    m_model.reset();
    m_preferences.values.clear();
    EXPECT_FALSE(model().add(widgetOf(WidgetKind::timer)));
    model().migrate({ WidgetKind::ai });
    EXPECT_EQ(saved().itemCount(), 1);
    EXPECT_EQ(m_preferences.values.value(u"launcherItems.migrated"_qs), true);
}

TEST_F(Launcher, aMissingApplicationIsNoticedForTwoSeconds)
{
    QSignalSpy told(&model(), &LauncherModel::noticeChanged);
    model().open(appAt("/gone.desktop"));
    EXPECT_THAT(m_workspace.opened, IsEmpty());
    EXPECT_EQ(model().notice(), u"App not found"_qs);
    m_loop.advance(1.5);
    model().showNotice(u"Another"_qs);
    m_loop.advance(1.9);
    EXPECT_EQ(model().notice(), u"Another"_qs);
    m_loop.advance(0.1);
    EXPECT_EQ(model().notice(), QString());
    EXPECT_EQ(told.size(), 3);
    EXPECT_EQ(m_loop.waiting(), 0);
}

TEST_F(Launcher, namesAndIconsOfApplications)
{
    m_workspace.names = { { u"/one.desktop"_qs, u"Eins"_qs }, { u"/two.desktop"_qs, QString() } };
    EXPECT_EQ(model().displayName(appAt("/one.desktop")), u"Eins"_qs);
    EXPECT_EQ(model().displayName(appAt("/two.desktop")), u"two"_qs);

    EXPECT_EQ(model().icon(appAt("/one.desktop"), 64).width(), 64);
    EXPECT_EQ(model().icon(appAt("/one.desktop"), 48).width(), 64);
    EXPECT_EQ(m_workspace.iconsAsked.size(), 1);
    EXPECT_EQ(model().icon(appAt("/one.desktop"), 96).width(), 96);
    EXPECT_TRUE(model().icon(widgetOf(WidgetKind::ai)).isNull());
}

TEST_F(Launcher, applicationsAreLookedUpOnceUntilTheDesktopChanges)
{
    const LaunchItem known = appAt("/one.desktop"), unknown = appAt("/gone.desktop");
    m_workspace.names = { { u"/one.desktop"_qs, u"Eins"_qs } };
    QSignalSpy told(&model(), &LauncherModel::faviconsChanged);
    const auto layOut = [&] {
        for (int i = 0; i < 100; ++i) {
            for (const LaunchItem& item : { known, unknown }) {
                model().displayName(item);
                model().icon(item);
            }
        }
    };
    layOut();
    EXPECT_THAT(m_workspace.namesAsked, ElementsAre(u"/one.desktop"_qs, u"/gone.desktop"_qs));
    EXPECT_THAT(m_workspace.iconsAsked, ElementsAre(u"/one.desktop"_qs, u"/gone.desktop"_qs));

    m_workspace.names[u"/gone.desktop"_qs] = u"Zwei"_qs;
    Q_EMIT m_workspace.changed();
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(model().displayName(unknown), u"Zwei"_qs);
    layOut();
    EXPECT_EQ(m_workspace.namesAsked.size(), 4);
    EXPECT_EQ(m_workspace.iconsAsked.size(), 4);
}

TEST_F(Launcher, faviconsComeLaterAndAreAskedForOnce)
{
    QSignalSpy told(&model(), &LauncherModel::faviconsChanged);
    for (const char* url : { "https://Good.example/x", "https://good.example/y", "https://bad.example/" })
        EXPECT_TRUE(model().icon(linkTo(url)).isNull());
    EXPECT_THAT(m_fetcher.asked, IsEmpty()); // not from inside a view's question
    m_loop.turn();
    EXPECT_EQ(m_fetcher.asked.size(), 2);

    QImage picture(32, 32, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    m_fetcher.answer({ {}, 200, faviconImage::png(picture) });
    m_fetcher.answer({ u"refused"_qs, 0, {} });
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(model().icon(linkTo("https://GOOD.example/z")).width(), 32);
    EXPECT_TRUE(model().icon(linkTo("https://bad.example/")).isNull());
    m_loop.turn();
    EXPECT_EQ(m_fetcher.asked.size(), 2); // a failure is not tried again
}

TEST_F(Launcher, goneBeforeItsFavicon)
{
    for (const bool asked : { false, true }) {
        EXPECT_TRUE(model().icon(linkTo("https://a.example")).isNull());
        if (asked)
            m_loop.turn();
        m_model.reset();
        m_loop.turn();
    }
    m_fetcher.answer({ {}, 200, "x" });
    m_loop.turn();
    EXPECT_THAT(m_log.lines, IsEmpty());
}

} // namespace
