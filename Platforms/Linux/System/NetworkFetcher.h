#pragma once

#include "Kestro/Platform/Fetcher.h"
#include "Kestro/Platform/MainLoop.h"

#include <QByteArray>

struct sockaddr;

namespace kestro {

class CurlTransfers;

/// HTTPS through libcurl, since Qt reads the headers of an answer without a bound and offers no way to set one.
/// Nothing of it is there before the first fetch. Each fetch has connections of its own.
class NetworkFetcher final : public Fetcher {
public:
    /// `authorities` (PEM) stand in for the system's, where there are any. `isInside` tells the addresses that a public
    /// host cannot redirect to. `loop` outlives this, and this its fetches.
    explicit NetworkFetcher(MainLoop& loop, QByteArray authorities = {}, bool (*isInside)(const sockaddr*) = nullptr);
    ~NetworkFetcher() override;

    [[nodiscard]] std::unique_ptr<Fetch> get(
        const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done) override;

private:
    MainLoop& m_loop;
    QByteArray m_authorities;
    bool (*m_isInside)(const sockaddr*);
    std::unique_ptr<CurlTransfers> m_transfers;
};

} // namespace kestro
