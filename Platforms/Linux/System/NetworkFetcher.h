#pragma once

#include "Kestro/Platform/Fetcher.h"
#include "Kestro/Platform/MainLoop.h"

#include <QList>
#include <QSslCertificate>

class QNetworkAccessManager;

namespace kestro {

/// HTTPS through Qt. What it needs for that, a thread among it, is there from the first fetch until half a minute after
/// the last.
class NetworkFetcher final : public Fetcher {
public:
    /// `authorities` stand in for the system's, where there are any. `loop` outlives this, and this its fetches.
    explicit NetworkFetcher(MainLoop& loop, QList<QSslCertificate> authorities = {});
    ~NetworkFetcher() override;

    [[nodiscard]] std::unique_ptr<Fetch> get(
        const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done) override;

private:
    void fetchEnded();

    MainLoop& m_loop;
    QList<QSslCertificate> m_authorities;
    std::unique_ptr<QNetworkAccessManager> m_manager;
    int m_running = 0;
    WorkItem m_putAway;
};

} // namespace kestro
