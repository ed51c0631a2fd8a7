#include "Kestro/Layout/FaviconCache.h"

#include "Kestro/Layout/FaviconImage.h"
#include "Kestro/Platform/Log.h"
#include "Kestro/Platform/MainLoop.h"

#include <QDir>
#include <QSaveFile>

namespace kestro {

namespace {
constexpr qint64 maxFileBytes = 8 * 1024 * 1024; // ours are below; whatever else lies there is not read

QImage readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxFileBytes)
        return {};
    return faviconImage::largestFrame(file.readAll());
}

bool canNameFile(const QString& host)
{
    return !host.isEmpty() && !host.contains(u'/') && !host.contains(u'\\') && !host.contains(QStringLiteral(".."));
}
} // namespace

FaviconCache::FaviconCache(MainLoop& loop, Fetcher& fetcher, Log& log, QString folder)
    : m_loop(loop)
    , m_fetcher(fetcher)
    , m_log(log)
    , m_folder(std::move(folder))
{
}

QString FaviconCache::file(const QString& host) const { return m_folder + u'/' + host + QStringLiteral(".png"); }

void FaviconCache::image(const QString& host, const Done& done)
{
    if (!canNameFile(host))
        return done({});
    const QImage kept = readFile(file(host));
    if (!kept.isNull())
        return done(faviconImage::thumbnail(kept));

    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setHost(host);
    url.setPath(QStringLiteral("/favicon.ico"));
    const quint64 number = m_nextFetch++;
    (*m_fetches)[number] = m_fetcher.get(url, timeout, maxBytes, [this, number, host, done](const FetchResult& result) {
        // Not from inside itself: a fetch that is destroyed ends.
        m_loop.post([fetches = std::weak_ptr(m_fetches), number] {
            if (const auto alive = fetches.lock())
                alive->erase(number);
        });
        done(receive(host, result));
    });
}

QImage FaviconCache::receive(const QString& host, const FetchResult& result) const
{
    if (!result.error.isEmpty()) {
        m_log.write(QStringLiteral("Kestro: favicon fetch for %1 failed: %2").arg(host, result.error));
        return {};
    }
    if (result.status != 200) {
        m_log.write(QStringLiteral("Kestro: no favicon at %1").arg(host));
        return {};
    }
    const QImage frame = faviconImage::largestFrame(result.body);
    if (frame.isNull()) {
        m_log.write(QStringLiteral("Kestro: favicon for %1 didn't decode").arg(host));
        return {};
    }
    keep(host, faviconImage::png(frame));
    return faviconImage::thumbnail(frame);
}

void FaviconCache::keep(const QString& host, const QByteArray& png) const
{
    QString error;
    if (!QDir().mkpath(m_folder)) {
        error = QStringLiteral("the folder %1 can't be made").arg(m_folder);
    } else {
        QSaveFile output(file(host));
        if (!output.open(QIODevice::WriteOnly) || output.write(png) != png.size() || !output.commit())
            error = output.errorString();
    }
    if (!error.isEmpty())
        m_log.write(QStringLiteral("Kestro: couldn't cache the favicon for %1: %2").arg(host, error));
}

} // namespace kestro
