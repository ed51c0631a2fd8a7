#include "HttpsServer.h"
#include "Platforms/Linux/System/InsideAddress.h"
#include "Platforms/Linux/System/NetworkFetcher.h"
#include "Platforms/Linux/System/QtMainLoop.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <netdb.h>

namespace kestro {
namespace {

using namespace test;

class NetworkFetcherTest : public testing::Test {
protected:
    static constexpr qint64 limit = 100'000;

    static void SetUpTestSuite() { sharedServer = std::make_unique<HttpsServer>(); }
    static void TearDownTestSuite() { sharedServer.reset(); }

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

    static inline std::unique_ptr<HttpsServer> sharedServer;
    QtMainLoop m_loop;
    NetworkFetcher m_fetcher{ m_loop, sharedServer->authority };
};

TEST_F(NetworkFetcherTest, HandsOverAnswersOfEveryStatus)
{
    const std::tuple<const char*, int, QByteArray> cases[] = {
        { "/redirect", 200, "hello" },
        { "/missing", 404, "none" },
        { "/packed", 200, "\x1F\x8B not unpacked" },
        { "/full", 200, QByteArray(limit - HttpsServer::headBytes, 'x') },
    };
    for (const auto& [path, status, body] : cases) {
        const FetchResult result = fetch(m_fetcher, sharedServer->url(path));
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
        { "/headers", 4, "the answer is too large" },
        { "/header", 4, "the answer is too large" },
        { "/cut", 4, "the server closed the connection too early" },
    };
    for (const auto& [path, timeout, error] : cases) {
        SCOPED_TRACE(path);
        QElapsedTimer clock;
        clock.start();
        const auto before = sharedServer->requests.size();
        const FetchResult result = fetch(m_fetcher, sharedServer->url(path), timeout);
        EXPECT_EQ(result.error, QLatin1String(error));
        EXPECT_TRUE(result.body.isEmpty());
        EXPECT_LT(clock.elapsed(), 3000);
        EXPECT_LE(sharedServer->requests.size() - before, 6);
    }
    EXPECT_LT(sharedServer->endlessBytes, 20'000'000) << "of a gigabyte";
    for (const char* const url : { "http://127.0.0.1/", "file:///etc/hostname", "https://", "" })
        EXPECT_EQ(fetch(m_fetcher, QUrl(QLatin1String(url))).error, u"not a secure web address"_s) << url;
}

TEST_F(NetworkFetcherTest, TrustsNobodyElse)
{
    NetworkFetcher systemTrust(m_loop);
    EXPECT_TRUE(fetch(systemTrust, sharedServer->url("/good")).error.contains(u"certificate"));
    // The right authority, the wrong name.
    EXPECT_TRUE(fetch(m_fetcher, sharedServer->url("/good", "127.0.0.2")).error.contains(u"host name"));
}

TEST_F(NetworkFetcherTest, SendsNothingAlong)
{
    fetch(m_fetcher, sharedServer->url("/cookie"));
    fetch(m_fetcher, sharedServer->url("/good"));
    EXPECT_FALSE(sharedServer->requests.last().toLower().contains("cookie"))
        << sharedServer->requests.last().constData();
}

TEST_F(NetworkFetcherTest, TellsNothingAfterTheHandleHasGone)
{
    for (const char* const path : { "/good", "/endless", "/hang" }) {
        int told = 0;
        const auto requests = sharedServer->requests.size();
        auto handle = m_fetcher.get(sharedServer->url(path), 0.2, limit, [&](const FetchResult&) { ++told; });
        ASSERT_TRUE(waitFor([&] { return sharedServer->requests.size() > requests; }));
        handle.reset();
        fetch(m_fetcher, sharedServer->url("/good")); // time for what must not come
        EXPECT_EQ(told, 0) << path;
        // The one who is told may drop it too.
        handle = m_fetcher.get(sharedServer->url(path), 0.2, limit, [&](const FetchResult&) { handle.reset(); });
        EXPECT_TRUE(waitFor([&] { return !handle; })) << path;
    }
}

// Here 127.0.0.2 stands for the local network, and where it counts 127.0.0.1 for the internet.
bool isSecondLoopback(const sockaddr* address) { return QHostAddress(address) == QHostAddress(u"127.0.0.2"_s); }

TEST_F(NetworkFetcherTest, FollowsNoRedirectFromThePublicIntoTheLocalNetwork)
{
    NetworkFetcher fetcher(m_loop, sharedServer->authority, &isSecondLoopback);
    const auto before = sharedServer->requests.size();
    EXPECT_EQ(fetch(fetcher, sharedServer->url("/elsewhere")).error, u"redirected into the local network"_s);
    EXPECT_EQ(sharedServer->requests.size() - before, 1) << "the second host was not spoken to";
    EXPECT_EQ(fetch(fetcher, sharedServer->url("/redirect")).body, "hello");
    // What the user names is asked, and one local host may name another: only the certificate is wrong here.
    EXPECT_TRUE(fetch(fetcher, sharedServer->url("/good", "127.0.0.2")).error.contains(u"host name"));
    EXPECT_TRUE(fetch(m_fetcher, sharedServer->url("/elsewhere")).error.contains(u"host name"));
}

TEST(InsideAddress, TellsTheLocalNetworkFromTheInternet)
{
    const std::pair<bool, std::vector<const char*>> cases[] = {
        { true,
            { "0.0.0.0", "10.255.0.1", "100.64.0.1", "100.127.255.255", "127.0.0.1", "169.254.169.254", "172.16.0.1",
                "172.31.255.255", "192.168.1.1", "198.19.0.1", "224.0.0.251", "255.255.255.255", "::", "::1", "fe80::1",
                "febf::1", "fec0::1", "fc00::1", "fdff::1", "ff02::1", "::ffff:127.0.0.1", "::ffff:192.168.1.1",
                "::10.0.0.1", "64:ff9b::10.0.0.1", "64:ff9b:1::8.8.8.8", "2002:7f00:1::", "2002:c0a8:101::1" } },
        { false,
            { "1.1.1.1", "9.255.255.255", "11.0.0.0", "100.63.255.255", "100.128.0.0", "126.0.0.1", "128.0.0.1",
                "169.253.0.1", "172.15.0.1", "172.32.0.1", "192.167.0.1", "192.169.0.1", "198.17.0.1", "198.20.0.1",
                "223.255.255.255", "2606:4700::1111", "fbff::1", "fe00::1", "::ffff:8.8.8.8", "64:ff9b::8.8.8.8",
                "2002:808:808::1" } },
    };
    for (const auto& [inside, addresses] : cases) {
        for (const char* const address : addresses) {
            addrinfo hints{};
            hints.ai_flags = AI_NUMERICHOST;
            addrinfo* found = nullptr;
            ASSERT_EQ(::getaddrinfo(address, nullptr, &hints, &found), 0) << address;
            EXPECT_EQ(isInsideAddress(found->ai_addr), inside) << address;
            ::freeaddrinfo(found);
        }
    }
}

} // namespace
} // namespace kestro
