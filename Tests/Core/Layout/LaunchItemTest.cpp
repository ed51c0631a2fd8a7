#include "Tests/Core/Layout/Items.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace kestro;
using namespace kestro::test;

namespace {

LaunchItem appAt(const char* path) { return { id(1), LaunchItem::App{ QString::fromUtf8(path) } }; }

TEST(LaunchItem, names)
{
    const auto url = [](const char* text, const char* title = "") {
        return link(1, QString::fromUtf8(text), QString::fromUtf8(title));
    };
    const std::pair<LaunchItem, const char*> table[] = {
        { appAt("/usr/share/applications/org.gnome.Calculator.desktop"), "org.gnome.Calculator" },
        { appAt("/Applications/Notes.app/"), "Notes" }, { appAt("Notes.app"), "Notes" },
        { appAt("/bin/.hidden"), ".hidden" }, { appAt("/bin/ends."), "ends." }, { appAt("/bin/plain"), "plain" },
        { appAt("/"), "/" }, { appAt(""), "" }, { url("https://example.com/a", " \n A title\t"), "A title" },
        { url("https://example.com/a", " \n\t"), "example.com" },
        { url("mailto:someone@example.com"), "mailto:someone@example.com" },
        { widget(1, WidgetKind::keyboardCleaner), "Keyboard Cleaner" }, { divider(1), "Divider" }
    };
    for (const auto& [item, expected] : table)
        EXPECT_EQ(item.name().toStdString(), expected);
}

TEST(LaunchItem, sameness)
{
    const std::tuple<LaunchItem, LaunchItem, bool> table[] = { { appAt("/a/b.app"), appAt("/a/b.app/"), true },
        { appAt("/a/./c/../b.app"), appAt("/a/b.app"), true }, { appAt("/a/b.app"), appAt("/a/B.app"), false },
        { link(1, u"https://a.com/x"_qs, u"One"_qs), link(2, u"https://a.com/x"_qs, u"Two"_qs), true },
        { link(1, u"https://a.com/x"_qs), link(2, u"https://a.com/y"_qs), false },
        { widget(1, WidgetKind::ai), widget(2, WidgetKind::ai), true },
        { widget(1, WidgetKind::ai), widget(2, WidgetKind::stats), false }, { divider(1), divider(1), false },
        { divider(1), appAt("/"), false }, { appAt("/a"), link(1, u"file:///a"_qs), false } };
    for (const auto& [a, b, same] : table) {
        EXPECT_EQ(a.isSame(b), same) << a.name().toStdString() << ' ' << b.name().toStdString();
        EXPECT_EQ(b.isSame(a), same);
    }
}

TEST(LaunchItem, actions)
{
    using Verb = ItemAction::Verb;
    EXPECT_EQ(appAt("/a").action(), ItemAction{ Verb::open });
    EXPECT_EQ(link(1, u"https://a.com"_qs).action(), ItemAction{ Verb::open });
    EXPECT_EQ(divider(1).action(), ItemAction{ Verb::none });
    const std::set<WidgetKind> windows{ WidgetKind::stats, WidgetKind::ai, WidgetKind::clipboard, WidgetKind::notes };
    for (const WidgetKind kind : allCases<WidgetKind>()) {
        const ItemAction expected = kind == WidgetKind::keyboardCleaner ? ItemAction{ Verb::startCleaner }
            : windows.contains(kind)                                    ? ItemAction{ Verb::openWindow, kind }
                                                                        : ItemAction{ Verb::showCard, kind };
        EXPECT_EQ(widget(1, kind).action(), expected) << rawValue(kind).toStdString();
    }
}

TEST(LaunchItem, hostsAreLowerCaseAscii)
{
    EXPECT_EQ(link(1, u"https://EXAMPLE.com:8080/x"_qs).host(), u"example.com"_qs);
    EXPECT_EQ(link(1, u"https://bücher.example/"_qs).host(), u"xn--bcher-kva.example"_qs);
    EXPECT_EQ(link(1, u"https://[::1]/"_qs).host(), u"::1"_qs);
    EXPECT_EQ(appAt("/a").host(), QString());
}

TEST(LaunchItem, storedForm)
{
    const LaunchItem item{ id(0xAB), LaunchItem::Link{ QUrl(u"https://a.com/ü"_qs), u"T"_qs }, KeyCombo{ 1, 256 } };
    EXPECT_EQ(item.toJson().dump(),
        R"({"id":"000000AB-0000-0000-0000-000000000001","kind":{"link":{"title":"T","url":"https://a.com/%C3%BC"}},)"
        R"("shortcut":{"keyCode":1,"modifiers":256}})");
    EXPECT_EQ(divider(1).toJson()["kind"].dump(), R"({"divider":{}})");
    EXPECT_FALSE(divider(1).toJson().contains("shortcut"));
    // A path's bytes may be no UTF-8 at all: it is stored, not a crash.
    const LaunchItem odd{ id(1), LaunchItem::App{ QStringLiteral("/a/") + QChar(0xD800) } };
    EXPECT_NO_THROW(odd.toJson().dump());
    for (const LaunchItem& each : { item, app(1), widget(2, WidgetKind::mirror), divider(3) })
        EXPECT_EQ(LaunchItem::fromJson(each.toJson()), each);
}

} // namespace
