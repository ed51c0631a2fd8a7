#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

namespace kestro {

/// The result of a fetch. With an `error` (plain words) the rest is void.
struct FetchResult {
    QString error;
    int status = 0; ///< HTTP status
    QByteArray body;
};

/// A fetch under way; destroying it ends it and nothing more is told.
class Fetch {
public:
    virtual ~Fetch() = default;
};

/// Getting things over HTTPS: nothing is stored or sent along, certificates are checked, and redirects are followed
/// a few times, to https only and never from a public host into this computer or the local network. Main thread.
class Fetcher {
public:
    virtual ~Fetcher() = default;

    /// Gets `url`. Headers and body that come to more than `maxBytes`, and a whole that takes longer than
    /// `timeoutSeconds`, are errors.
    /// `done` is called once, on the main thread, never before this returns.
    [[nodiscard]] virtual std::unique_ptr<Fetch> get(
        const QUrl& url, double timeoutSeconds, qint64 maxBytes, std::function<void(const FetchResult&)> done) = 0;
};

} // namespace kestro
