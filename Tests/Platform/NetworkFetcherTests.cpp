#include "HttpsServer.h"
#include "Platforms/Linux/System/NetworkFetcher.h"
#include "Platforms/Linux/System/QtMainLoop.h"

#include <QDir>
#include <QElapsedTimer>

namespace kestro {
namespace {

using namespace test;

int httpThreads()
{
    int count = 0;
    const QDir tasks(u"/proc/self/task"_s);
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        count += contentOf(tasks.filePath(task + u"/comm"_s)).startsWith("QNetworkAccess") ? 1 : 0;
    return count;
}

class NetworkFetcherTest : public testing::Test {
protected:
    static constexpr qint64 limit = 100'000;

    static void SetUpTestSuite() { s_server = std::make_unique<HttpsServer>(); }
    static void TearDownTestSuite() { s_server.reset(); }

    FetchResult fetch(NetworkFetcher& fetcher, const QUrl& url, double timeout = 4)
    {
        QList<FetchResult> results;
        const auto handle = fetcher.get(url, timeout, limit, [&](const FetchResult& r) { results.append(r); });
        EXPECT_TRUE(results.isEmpty()) << "before the call returned";
        EXPECT_TRUE(waitFor([&] { return !results.isEmpty(); }));
        settle();
        EXPECT_EQ(results.size(), 1);
        return results.value(0);
    }

    static inline std::unique_ptr<HttpsServer> s_server;
    QtMainLoop m_loop;
    NetworkFetcher m_fetcher{ m_loop, s_server->authority };
};

TEST_F(NetworkFetcherTest, HandsOverAnswersOfEveryStatus)
{
    const std::tuple<const char*, int, QByteArray> cases[] = {
        { "/redirect", 200, "hello" },
        { "/missing", 404, "none" },
        { "/packed", 200, "\x1F\x8B not unpacked" },
        { "/full", 200, QByteArray(limit, 'x') },
    };
    for (const auto& [path, status, body] : cases) {
        const FetchResult result = fetch(m_fetcher, s_server->url(path));
        EXPECT_EQ(result.error, QString()) << path;
        EXPECT_EQ(result.status, status) << path;
        EXPECT_TRUE(result.body == body) << path;
    }
}

TEST_F(NetworkFetcherTest, RefusesWhatIsHostileOrBroken)
{
    const std::tuple<const char*, double, const char*> cases[] = {
        { "/hang", 0.3, "it took too long" },
        { "/trickle", 0.5, "it took too long" },
        { "/loop", 4, "too many redirects" },
        { "/insecure", 4, "redirected to an insecure address" },
        { "/over", 4, "the answer is too large" },
        { "/endless", 4, "the answer is too large" },
        { "/cut", 4, "the server closed the connection too early" },
    };
    for (const auto& [path, timeout, error] : cases) {
        SCOPED_TRACE(path);
        QElapsedTimer clock;
        clock.start();
        const auto before = s_server->requests.size();
        const FetchResult result = fetch(m_fetcher, s_server->url(path), timeout);
        EXPECT_EQ(result.error, QLatin1String(error));
        EXPECT_TRUE(result.body.isEmpty());
        EXPECT_LT(clock.elapsed(), 3000);
        EXPECT_LE(s_server->requests.size() - before, 6);
    }
    EXPECT_LT(s_server->endlessBytes, 20'000'000) << "of a gigabyte";
    for (const char* const url : { "http://127.0.0.1/", "file:///etc/hostname", "https://", "" })
        EXPECT_EQ(fetch(m_fetcher, QUrl(QLatin1String(url))).error, u"not a secure web address"_s) << url;
}

TEST_F(NetworkFetcherTest, TrustsNobodyElse)
{
    NetworkFetcher systemTrust(m_loop);
    EXPECT_TRUE(fetch(systemTrust, s_server->url("/good")).error.contains(u"certificate"));
    QUrl url = s_server->url("/good");
    url.setHost(u"127.0.0.2"_s); // the right authority, the wrong name
    EXPECT_TRUE(fetch(m_fetcher, url).error.contains(u"host name"));
}

TEST_F(NetworkFetcherTest, SendsNothingAlong)
{
    fetch(m_fetcher, s_server->url("/cookie"));
    fetch(m_fetcher, s_server->url("/good"));
    EXPECT_FALSE(s_server->requests.last().toLower().contains("cookie")) << s_server->requests.last().constData();
}

TEST_F(NetworkFetcherTest, TellsNothingAfterTheHandleHasGone)
{
    for (const char* const path : { "/good", "/endless", "/hang" }) {
        int told = 0;
        const auto requests = s_server->requests.size();
        auto handle = m_fetcher.get(s_server->url(path), 0.2, limit, [&](const FetchResult&) { ++told; });
        ASSERT_TRUE(waitFor([&] { return s_server->requests.size() > requests; }));
        handle.reset();
        fetch(m_fetcher, s_server->url("/good")); // time for what must not come
        EXPECT_EQ(told, 0) << path;
        // The one who is told may drop it too.
        handle = m_fetcher.get(s_server->url(path), 0.2, limit, [&](const FetchResult&) { handle.reset(); });
        EXPECT_TRUE(waitFor([&] { return !handle; })) << path;
    }
}

TEST_F(NetworkFetcherTest, PutsItsMachineryAwayAfterAWhile)
{
    FakeLoop loop;
    NetworkFetcher fetcher(loop, s_server->authority);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(fetch(fetcher, s_server->url("/good")).status, 200);
        loop.advance(29);
        EXPECT_EQ(httpThreads(), 1);
        loop.advance(2);
        EXPECT_TRUE(waitFor([] { return httpThreads() == 0; }));
    }
}

} // namespace
} // namespace kestro
