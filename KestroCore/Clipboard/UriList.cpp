#include "KestroCore/Clipboard/UriList.h"

#include <QSysInfo>
#include <QUrl>

namespace kestro::UriList {

namespace {
constexpr qsizetype mostPaths = 10000;
}

QStringList paths(QByteArrayView list)
{
    QStringList found;
    for (qsizetype from = 0; from < list.size() && found.size() < mostPaths;) {
        qsizetype end = list.indexOf('\n', from);
        end = end < 0 ? list.size() : end;
        const QByteArray line = list.sliced(from, end - from).toByteArray().trimmed();
        from = end + 1;
        if (!line.startsWith("file:"))
            continue;
        const QUrl url = QUrl::fromEncoded(line, QUrl::TolerantMode);
        // Some programs name the computer.
        const bool isHere = url.host().isEmpty() || url.host() == u"localhost"
            || url.host().compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
        const QString path = url.path(QUrl::FullyDecoded);
        if (isHere && path.startsWith(u'/'))
            found.append(path);
    }
    return found;
}

QByteArray uri(const QString& path) { return QUrl::fromLocalFile(path).toEncoded(); }

} // namespace kestro::UriList
