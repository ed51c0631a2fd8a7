#include "NetworkFetcher.h"

#include "CurlTransfers.h"
#include "InsideAddress.h"

#include <array>
#include <sys/socket.h>
#include <utility>

namespace kestro {
namespace {

constexpr long mostRedirects = 5;

struct Release {
    void operator()(CURL* transfer) const { ::curl_easy_cleanup(transfer); }
    void operator()(curl_slist* list) const { ::curl_slist_free_all(list); }
};

/// Ends in one of three ways, and only once: an outcome is told, or the handle is destroyed.
class RunningFetch final : public Fetch {
public:
    using Done = std::function<void(const FetchResult&)>;

    RunningFetch(Done done, qint64 maxBytes, bool (*isInside)(const sockaddr*))
        : m_done(std::move(done))
        , m_maxBytes(maxBytes)
        , m_isInside(isInside)
    {
    }
    ~RunningFetch() override { end(); }
    RunningFetch(const RunningFetch&) = delete;
    RunningFetch& operator=(const RunningFetch&) = delete;

    void start(
        const QUrl& url, const QByteArray& authorities, MainLoop& loop, double timeoutSeconds, CurlTransfers& transfers)
    {
        m_limit = loop.after(timeoutSeconds, [this] { tell({ QStringLiteral("it took too long"), 0, {} }); });
        m_transfers = &transfers;
        set(CURLOPT_URL, url.toEncoded().constData());
        set(CURLOPT_ERRORBUFFER, m_error.data());
        allowHttpsAlone();
        trust(authorities);
        receive();
        transfers.add(m_curl.get(), [this](CURLcode result) { finished(result); });
    }

    /// Fails on a later turn.
    void refuse(MainLoop& loop, const QString& reason)
    {
        m_limit = loop.after(0, [this, reason] { tell({ reason, 0, {} }); });
    }

private:
    template <typename Value> void set(CURLoption option, Value value)
    {
        ::curl_easy_setopt(m_curl.get(), option, value);
    }

    void allowHttpsAlone()
    {
        set(CURLOPT_PROTOCOLS_STR, "https");
        set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, mostRedirects);
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        set(CURLOPT_PROXY, ""); // a proxy would hide where a redirect leads
        set(CURLOPT_OPENSOCKETFUNCTION, &RunningFetch::open);
        set(CURLOPT_OPENSOCKETDATA, this);
        // A connection that another fetch left open is not asked about above.
        set(CURLOPT_FRESH_CONNECT, 1L);
        set(CURLOPT_FORBID_REUSE, 1L);
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_QUICK_EXIT, 1L); // or the end of a fetch waits for the name server
    }

    void trust(const QByteArray& authorities)
    {
        // The folder alone: the file beside it, with all authorities, would be parsed whole for each fetch.
        set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
        if (authorities.isEmpty())
            return;
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
        curl_blob blob{ const_cast<char*>(authorities.constData()), static_cast<size_t>(authorities.size()),
            CURL_BLOB_COPY };
        set(CURLOPT_CAINFO_BLOB, &blob);
    }

    void receive()
    {
        // The limit is on what is received: nothing small may unpack into something large.
        m_headers.reset(::curl_slist_append(nullptr, "Accept-Encoding: identity"));
        set(CURLOPT_HTTPHEADER, m_headers.get());
        set(CURLOPT_USERAGENT, "Mozilla/5.0");
        set(CURLOPT_HEADERFUNCTION, &RunningFetch::takeHeader);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_WRITEFUNCTION, &RunningFetch::takeBody);
        set(CURLOPT_WRITEDATA, this);
    }

    // For each address that is tried, after the name has been looked up: what a name says later counts for nothing.
    static curl_socket_t open(void* self, curlsocktype, curl_sockaddr* address)
    {
        auto* const fetch = static_cast<RunningFetch*>(self);
        const bool inside = fetch->m_isInside(&address->addr);
        long redirects = 0;
        ::curl_easy_getinfo(fetch->m_curl.get(), CURLINFO_REDIRECT_COUNT, &redirects);
        fetch->m_refused = inside && redirects > 0 && fetch->m_wasOutside;
        if (fetch->m_refused)
            return CURL_SOCKET_BAD;
        fetch->m_wasOutside = fetch->m_wasOutside || !inside;
        return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }

    static size_t takeHeader(char*, size_t size, size_t count, void* self)
    {
        return static_cast<RunningFetch*>(self)->count(size * count);
    }

    static size_t takeBody(char* bytes, size_t size, size_t count, void* self)
    {
        auto* const fetch = static_cast<RunningFetch*>(self);
        const size_t taken = fetch->count(size * count);
        fetch->m_body.append(bytes, static_cast<qsizetype>(taken));
        return taken;
    }

    // Returns `bytes`, or 0, which makes libcurl give up.
    size_t count(size_t bytes)
    {
        m_received += static_cast<qint64>(bytes);
        if (m_received <= m_maxBytes)
            return bytes;
        m_tooLarge = true;
        return 0;
    }

    void finished(CURLcode result)
    {
        long status = 0;
        ::curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
        if (result == CURLE_OK)
            tell({ {}, static_cast<int>(status), m_body });
        else
            tell({ inWords(result), 0, {} });
    }

    QString inWords(CURLcode result) const
    {
        if (m_refused && result == CURLE_COULDNT_CONNECT)
            return QStringLiteral("redirected into the local network");
        // Out of memory is what libcurl says of one header line that is longer than it takes.
        if (m_tooLarge || result == CURLE_OUT_OF_MEMORY)
            return QStringLiteral("the answer is too large");
        switch (result) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return QStringLiteral("the server was not found");
        case CURLE_COULDNT_CONNECT:
            return QStringLiteral("the server took no connection");
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_RECV_ERROR:
            return QStringLiteral("the server closed the connection too early");
        case CURLE_TOO_MANY_REDIRECTS:
            return QStringLiteral("too many redirects");
        case CURLE_UNSUPPORTED_PROTOCOL:
            return QStringLiteral("redirected to an insecure address");
        default:
            return QString::fromUtf8(m_error.front() != '\0' ? m_error.data() : ::curl_easy_strerror(result));
        }
    }

    // `m_done` may destroy this.
    void tell(const FetchResult& result)
    {
        const Done done = std::exchange(m_done, nullptr);
        end();
        done(result);
    }

    void end()
    {
        m_limit.cancel();
        if (m_transfers)
            m_transfers->remove(m_curl.get());
    }

    Done m_done;
    const qint64 m_maxBytes; // of headers and body, over all redirects
    bool (*const m_isInside)(const sockaddr*);
    CurlTransfers* m_transfers = nullptr;
    std::array<char, CURL_ERROR_SIZE> m_error{};
    std::unique_ptr<curl_slist, Release> m_headers;
    std::unique_ptr<CURL, Release> m_curl{ ::curl_easy_init() };
    qint64 m_received = 0;
    bool m_wasOutside = false; // a host on the public internet was asked
    bool m_refused = false; // the address that was tried last
    bool m_tooLarge = false;
    QByteArray m_body;
    WorkItem m_limit;
};

} // namespace

NetworkFetcher::NetworkFetcher(MainLoop& loop, QByteArray authorities, bool (*isInside)(const sockaddr*))
    : m_loop(loop)
    , m_authorities(std::move(authorities))
    , m_isInside(isInside ? isInside : isInsideAddress)
{
}

NetworkFetcher::~NetworkFetcher() = default;

std::unique_ptr<Fetch> NetworkFetcher::get(
    const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done)
{
    auto fetch = std::make_unique<RunningFetch>(std::move(done), maxBytes, m_isInside);
    if (url.scheme() != QLatin1String("https") || url.host().isEmpty()) {
        fetch->refuse(m_loop, QStringLiteral("not a secure web address"));
        return fetch;
    }
    if (!m_transfers)
        m_transfers = std::make_unique<CurlTransfers>();
    fetch->start(url, m_authorities, m_loop, timeoutSeconds, *m_transfers);
    return fetch;
}

} // namespace kestro
