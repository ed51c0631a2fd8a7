#include "NetworkFetcher.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>

namespace kestro {
namespace {

constexpr double putAwaySeconds = 30;
constexpr int mostRedirects = 5;
constexpr qint64 chunk = 64 * 1024;
const QString tooLarge = QStringLiteral("the answer is too large");

QNetworkRequest plainRequest(const QUrl& url, const QList<QSslCertificate>& authorities)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    // The limit is on what is received: nothing small may unpack into something large.
    request.setRawHeader("Accept-Encoding", "identity");
    if (!authorities.isEmpty()) {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(authorities);
        request.setSslConfiguration(tls);
    }
    return request;
}

// A server's answer is an answer, whatever its status says. Qt files those under errors of two ranges.
bool isAnswer(QNetworkReply::NetworkError error, int status)
{
    const bool aboutContent = error > QNetworkReply::UnknownProxyError && error <= QNetworkReply::UnknownContentError;
    const bool aboutServer = error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError;
    return error == QNetworkReply::NoError || (status >= 300 && (aboutContent || aboutServer));
}

QString inWords(const QNetworkReply& reply)
{
    switch (reply.error()) {
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("the server was not found");
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("the server took no connection");
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("the server closed the connection too early");
    case QNetworkReply::TooManyRedirectsError:
        return QStringLiteral("too many redirects");
    case QNetworkReply::InsecureRedirectError:
        return QStringLiteral("redirected to an insecure address");
    default:
        return reply.errorString();
    }
}

/// Ends in one of three ways, and only once: an outcome is told, or the handle is destroyed.
class RunningFetch final : public QObject, public Fetch {
public:
    using Done = std::function<void(const FetchResult&)>;

    RunningFetch(Done done, std::function<void()> ended)
        : m_done(std::move(done))
        , m_ended(std::move(ended))
    {
    }
    ~RunningFetch() override { end(); }
    RunningFetch(const RunningFetch&) = delete;
    RunningFetch& operator=(const RunningFetch&) = delete;

    void start(QNetworkReply* reply, MainLoop& loop, double timeoutSeconds, qint64 maxBytes)
    {
        m_reply = reply;
        m_maxBytes = maxBytes;
        reply->setReadBufferSize(chunk);
        connect(reply, &QNetworkReply::readyRead, this, &RunningFetch::read);
        connect(reply, &QNetworkReply::finished, this, &RunningFetch::finished);
        m_limit = loop.after(timeoutSeconds, [this] { fail(QStringLiteral("it took too long")); });
    }

    /// Fails on a later turn.
    void refuse(MainLoop& loop, const QString& reason)
    {
        m_limit = loop.after(0, [this, reason] { fail(reason); });
    }

private:
    int status() const { return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

    // Returns whether the body is within its limit; it is never more than one byte over.
    bool take()
    {
        m_body += m_reply->read(m_maxBytes + 1 - m_body.size());
        return m_body.size() <= m_maxBytes;
    }

    void read()
    {
        if (!take())
            fail(tooLarge);
    }

    void finished()
    {
        if (!take())
            fail(tooLarge);
        else if (isAnswer(m_reply->error(), status()))
            tell({ {}, status(), m_body });
        else
            fail(inWords(*m_reply));
    }

    void fail(const QString& reason) { tell({ reason, 0, {} }); }

    // The one who is told may destroy this.
    void tell(const FetchResult& result)
    {
        const Done done = std::exchange(m_done, nullptr);
        end();
        done(result);
    }

    void end()
    {
        m_limit.cancel();
        if (m_reply) {
            m_reply->disconnect(this);
            m_reply->abort();
            m_reply->deleteLater();
            m_reply = nullptr;
        }
        if (const auto ended = std::exchange(m_ended, nullptr))
            ended();
    }

    Done m_done;
    std::function<void()> m_ended;
    QNetworkReply* m_reply = nullptr; // the manager's, and its last event is ours to ask for
    QByteArray m_body;
    qint64 m_maxBytes = 0;
    WorkItem m_limit;
};

} // namespace

NetworkFetcher::NetworkFetcher(MainLoop& loop, QList<QSslCertificate> authorities)
    : m_loop(loop)
    , m_authorities(std::move(authorities))
{
}

NetworkFetcher::~NetworkFetcher() = default;

std::unique_ptr<Fetch> NetworkFetcher::get(
    const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done)
{
    m_putAway.cancel();
    ++m_running;
    auto fetch = std::make_unique<RunningFetch>(std::move(done), [this] { fetchEnded(); });
    if (url.scheme() != QLatin1String("https") || url.host().isEmpty()) {
        fetch->refuse(m_loop, QStringLiteral("not a secure web address"));
        return fetch;
    }
    if (!m_manager)
        m_manager = std::make_unique<QNetworkAccessManager>();
    fetch->start(m_manager->get(plainRequest(url, m_authorities)), m_loop, timeoutSeconds, maxBytes);
    return fetch;
}

void NetworkFetcher::fetchEnded()
{
    if (--m_running == 0 && m_manager)
        m_putAway = m_loop.after(putAwaySeconds, [this] { m_manager.reset(); });
}

} // namespace kestro
