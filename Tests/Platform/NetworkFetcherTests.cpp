#include "HttpsServer.h"
#include "Platforms/Linux/System/NetworkFetcher.h"
#include "Platforms/Linux/System/QtMainLoop.h"

#include <QDir>
#include <QElapsedTimer>
#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;

int httpThreads()
{
    int count = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        count += contentOf(tasks.filePath(task + QStringLiteral("/comm"))).startsWith("QNetworkAccess") ? 1 : 0;
    return count;
}

class NetworkFetcherTest : public testing::Test {
protected:
    static constexpr qint64 limit = 100'000;

    static void SetUpTestSuite() { s_server = std::make_unique<HttpsServer>(); }
    static void TearDownTestSuite() { s_server.reset(); }

    FetchResult fetch(NetworkFetcher& fetcher, const QUrl& url, double timeout = 4)
    {
        std::optional<FetchResult> result;
        int told = 0;
        const auto handle = fetcher.get(url, timeout, limit, [&](const FetchResult& r) {
            result = r;
            ++told;
        });
        EXPECT_EQ(told, 0) << "before the call returned";
        EXPECT_TRUE(waitFor([&] { return told > 0; }));
        settle();
        EXPECT_EQ(told, 1);
        return result.value_or(FetchResult());
    }

    static std::unique_ptr<HttpsServer> s_server;
    QtMainLoop m_loop;
    NetworkFetcher m_fetcher{ m_loop, s_server->authority() };
};

std::unique_ptr<HttpsServer> NetworkFetcherTest::s_server;

TEST_F(NetworkFetcherTest, HandsOverAnswersOfEveryStatus)
{
    const struct {
        const char* path;
        int status;
        QByteArray body;
    } cases[] = {
        { "/good", 200, "hello" },
        { "/redirect", 200, "hello" },
        { "/missing", 404, "none" },
        { "/broken", 503, "" },
        { "/packed", 200, "\x1F\x8B not unpacked" },
        { "/full", 200, QByteArray(limit, 'x') },
    };
    for (const auto& c : cases) {
        const FetchResult result = fetch(m_fetcher, s_server->url(c.path));
        EXPECT_EQ(result.error, QString()) << c.path;
        EXPECT_EQ(result.status, c.status) << c.path;
        EXPECT_TRUE(result.body == c.body) << c.path;
    }
}

TEST_F(NetworkFetcherTest, RefusesWhatIsHostileOrBroken)
{
    const struct {
        const char* path;
        double timeout;
        const char* error;
    } cases[] = {
        { "/hang", 0.3, "it took too long" },
        { "/trickle", 0.5, "it took too long" },
        { "/loop", 4, "too many redirects" },
        { "/insecure", 4, "redirected to an insecure address" },
        { "/over", 4, "the answer is too large" },
        { "/endless", 4, "the answer is too large" },
        { "/cut", 4, "the server closed the connection too early" },
    };
    for (const auto& c : cases) {
        QElapsedTimer clock;
        clock.start();
        const FetchResult result = fetch(m_fetcher, s_server->url(c.path), c.timeout);
        EXPECT_EQ(result.error, QLatin1String(c.error)) << c.path;
        EXPECT_TRUE(result.body.isEmpty());
        EXPECT_LT(clock.elapsed(), 3000) << c.path;
    }
    EXPECT_LT(s_server->endlessBytes(), 20'000'000) << "of a gigabyte";
    EXPECT_LE(s_server->loops(), 6);
}

TEST_F(NetworkFetcherTest, TrustsNobodyElse)
{
    NetworkFetcher systemTrust(m_loop);
    EXPECT_TRUE(fetch(systemTrust, s_server->url("/good")).error.contains(QLatin1String("certificate")));
    // The right authority, the wrong name.
    QUrl url = s_server->url("/good");
    url.setHost(QStringLiteral("127.0.0.2"));
    EXPECT_TRUE(fetch(m_fetcher, url).error.contains(QLatin1String("host name")));
}

TEST_F(NetworkFetcherTest, FetchesOverHttpsAlone)
{
    for (const char* const url : { "http://127.0.0.1/", "file:///etc/hostname", "https://", "" })
        EXPECT_EQ(fetch(m_fetcher, QUrl(QLatin1String(url))).error, QStringLiteral("not a secure web address")) << url;
}

TEST_F(NetworkFetcherTest, SendsNothingAlong)
{
    fetch(m_fetcher, s_server->url("/cookie"));
    fetch(m_fetcher, s_server->url("/good"));
    EXPECT_FALSE(s_server->lastRequest().toLower().contains("cookie")) << s_server->lastRequest().constData();
}

TEST_F(NetworkFetcherTest, TellsNothingAfterTheHandleHasGone)
{
    int told = 0;
    const auto requests = s_server->requests();
    for (const char* const path : { "/good", "/endless", "/hang" }) {
        auto handle = m_fetcher.get(s_server->url(path), 0.2, limit, [&](const FetchResult&) { ++told; });
        handle.reset();
        handle = m_fetcher.get(s_server->url(path), 0.2, limit, [&](const FetchResult&) { ++told; });
        ASSERT_TRUE(waitFor([&] { return s_server->requests() > requests || told > 0; }));
        told = 0;
        handle.reset();
        fetch(m_fetcher, s_server->url("/good")); // time for what must not come
        EXPECT_EQ(told, 0) << path;
    }
}

TEST_F(NetworkFetcherTest, LetsTheOneWhoIsToldDropTheHandle)
{
    for (const char* const path : { "/good", "/over", "/hang" }) {
        std::unique_ptr<Fetch> handle;
        handle = m_fetcher.get(s_server->url(path), 0.3, limit, [&](const FetchResult&) { handle.reset(); });
        EXPECT_TRUE(waitFor([&] { return !handle; })) << path;
    }
}

TEST_F(NetworkFetcherTest, PutsItsMachineryAwayAfterAWhile)
{
    FakeLoop loop;
    NetworkFetcher fetcher(loop, s_server->authority());
    std::optional<FetchResult> result;
    const auto handle = fetcher.get(s_server->url("/good"), 4, limit, [&](const FetchResult& r) { result = r; });
    ASSERT_TRUE(waitFor([&] { return result.has_value(); }));
    EXPECT_EQ(httpThreads(), 1);
    loop.advance(29);
    EXPECT_EQ(httpThreads(), 1);
    loop.advance(2);
    EXPECT_TRUE(waitFor([] { return httpThreads() == 0; }));
    const auto again = fetcher.get(s_server->url("/good"), 4, limit, [&](const FetchResult&) { result.reset(); });
    EXPECT_TRUE(waitFor([&] { return !result.has_value(); }));
}

} // namespace
} // namespace kestro
