#pragma once

#include "Kestro/Platform/Fetcher.h"

#include <QImage>
#include <map>

namespace kestro {

class Log;
class MainLoop;

/// Small pictures of web sites, from a folder of files and else from the sites themselves. Main thread.
class FaviconCache {
public:
    static constexpr double timeout = 5.0; ///< seconds, for the whole fetch
    static constexpr qint64 maxBytes = 1024 * 1024; ///< of a fetched body

    /// `folder` is made when the first picture is kept.
    FaviconCache(MainLoop& loop, Fetcher& fetcher, Log& log, QString folder);

    using Done = std::function<void(const QImage&)>;
    /// Calls `done` once, at once or later: with the picture of `host` (lower case, ASCII), at most 64 pixels on a
    /// side, or with a null image. Not after this object is gone.
    void image(const QString& host, const Done& done);

private:
    QString file(const QString& host) const;
    QImage receive(const QString& host, const FetchResult& result) const;
    void keep(const QString& host, const QByteArray& png) const;

    MainLoop& m_loop;
    Fetcher& m_fetcher;
    Log& m_log;
    QString m_folder;
    using Fetches = std::map<quint64, std::unique_ptr<Fetch>>;
    std::shared_ptr<Fetches> m_fetches = std::make_shared<Fetches>();
    quint64 m_nextFetch = 0;
};

} // namespace kestro
