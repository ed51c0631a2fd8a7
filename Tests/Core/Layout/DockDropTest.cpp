#include "KestroCore/Layout/DockDrop.h"
#include "Tests/Core/Layout/Items.h"

#include <gmock/gmock.h>

using namespace kestro;
using namespace kestro::test;

namespace {

QList<QUrl> urls(const std::vector<const char*>& texts)
{
    QList<QUrl> list;
    for (const char* text : texts)
        list.append(QUrl(QString::fromUtf8(text)));
    return list;
}

/// "app /path", "link url 'title'", then "file url", in the order of the result.
std::vector<std::string> shown(const DockDrop& drop)
{
    std::vector<std::string> list;
    for (const LaunchItem& item : drop.items) {
        if (const auto* app = item.app())
            list.push_back("app " + app->path.toStdString());
        else if (const auto* link = item.link())
            list.push_back("link " + link->url.toString(QUrl::FullyEncoded).toStdString() + " '"
                + link->title.toStdString() + "'");
    }
    for (const QUrl& file : drop.files)
        list.push_back("file " + file.toString().toStdString());
    return list;
}

TEST(DockDrop, sorts)
{
    using Shown = std::vector<std::string>;
    const std::tuple<const char*, std::vector<const char*>, std::optional<QString>, Shown> table[] = {
        { "nothing", {}, u"T"_qs, {} },
        { "applications before links, files apart",
            { "https://a.com/", "file:///d/notes.txt", "file:///d/One.desktop", "file:///d/Two.app/" }, u" A \n"_qs,
            { "app /d/One.desktop", "app /d/Two.app", "link https://a.com/ 'A'", "file file:///d/notes.txt" } },
        { "in upper case", { "file:///d/ONE.DESKTOP" }, {}, { "app /d/ONE.DESKTOP" } },
        { "an extension is not enough", { "file:///d/fake.desktop" }, {}, { "file file:///d/fake.desktop" } },
        { "nor is being an application", { "file:///d/One" }, {}, { "file file:///d/One" } },
        { "standardised", { "file:///d/x/../One.desktop" }, {}, { "app /d/One.desktop" } },
        { "odd names", { "file:///d/One%20%25.desktop" }, {}, { "app /d/One %.desktop" } },
        { "several links take no title", { "https://a.com/", "https://b.com/" }, u"T"_qs,
            { "link https://a.com/ ''", "link https://b.com/ ''" } },
        { "what is dropped does not count", { "https://a.com/", "mailto:x@y.z", "ftp://b.com" }, u"T"_qs,
            { "link https://a.com/ 'T'" } },
        { "no scheme, no link", { "a.com", "//a.com/x" }, u"T"_qs, {} },
        { "escaped spaces stay escaped", { "https://a.com/b%20c" }, {}, { "link https://a.com/b%20c ''" } },
    };
    const auto isApp = [](const QString& path) { return !path.contains(u"fake"); };
    for (const auto& [what, dropped, title, expected] : table)
        EXPECT_EQ(shown(DockDrop::sort(urls(dropped), title, isApp, countingIds())), expected) << what;
    const DockDrop two = DockDrop::sort(urls({ "https://a.com", "https://b.com" }), {}, isApp, countingIds());
    EXPECT_EQ(numbers(two.items), (std::vector{ 1000, 1001 }));
}

} // namespace
