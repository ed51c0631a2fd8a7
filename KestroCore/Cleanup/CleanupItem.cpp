#include "KestroCore/Cleanup/CleanupItem.h"

#include <cmath>
#include <numeric>

namespace kestro {

QString title(CleanupCategory category)
{
    switch (category) {
    case CleanupCategory::appCaches:
        return QStringLiteral("App caches");
    case CleanupCategory::logs:
        return QStringLiteral("Logs");
    case CleanupCategory::developerCaches:
        return QStringLiteral("Compiler and build caches");
    case CleanupCategory::packageCaches:
        return QStringLiteral("Package caches");
    }
    return {};
}

CleanupRoots CleanupRoots::below(const QByteArray& home, const QByteArray& cacheHome, const QByteArray& stateHome)
{
    const QByteArray inside = home + '/';
    const auto ours = [&](const QByteArray& path, const char* fallback) {
        const bool usable = path.startsWith(inside) && !path.contains("/../") && !path.contains("//")
            && !path.endsWith("/..") && !path.endsWith('/');
        return usable ? path : inside + fallback;
    };
    const QByteArray caches = ours(cacheHome, ".cache");
    const QByteArray state = ours(stateHome, ".local/state");
    // Tools whose caches are made again by the next build, and which all keep them apart from what is installed.
    return { .home = home,
        .caches = caches,
        .logs = { inside + "Library/Logs", state, inside + ".local/share/logs", inside + ".npm/_logs" },
        .mixed = { state },
        .developerCaches = { inside + ".ccache", inside + ".gradle/caches", inside + ".gradle/daemon",
            inside + ".cargo/registry/cache", inside + ".cargo/registry/src", inside + ".cargo/git/checkouts",
            inside + ".nuget/http-cache" },
        .packageCaches = { inside + ".npm/_cacache", inside + ".bundle/cache", inside + ".conan/data/.cache",
            inside + ".rbenv/cache", inside + ".yarn/cache" } };
}

QList<QByteArray> CleanupRoots::of(CleanupCategory category) const
{
    switch (category) {
    case CleanupCategory::appCaches:
        return { caches };
    case CleanupCategory::logs:
        return logs;
    case CleanupCategory::developerCaches:
        return QList{ caches } + developerCaches;
    case CleanupCategory::packageCaches:
        return QList{ caches } + packageCaches;
    }
    return {};
}

qint64 CleanupScan::size() const
{
    return std::accumulate(items.begin(), items.end(), qint64(0),
        [](qint64 sum, const CleanupItem& each) { return sum + (each.inUse ? 0 : each.size); });
}

QString DiskCleanup::sizeText(qint64 bytes)
{
    if (bytes < 1000)
        return QStringLiteral("%1 bytes").arg(std::max<qint64>(bytes, 0));
    const auto value = double(bytes);
    if (bytes < 1'000'000)
        return QStringLiteral("%1 KB").arg(std::lround(value / 1e3));
    if (bytes < 1'000'000'000)
        return QStringLiteral("%1 MB").arg(std::lround(value / 1e6));
    if (bytes < 1'000'000'000'000)
        return QString::asprintf("%.1f GB", value / 1e9);
    return QString::asprintf("%.1f TB", value / 1e12);
}

QString DiskCleanup::summary(qint64 freed, int skipped)
{
    QString text = QStringLiteral("Freed ") + sizeText(freed);
    if (skipped > 0)
        text += QStringLiteral(" · %1 %2 skipped")
                    .arg(skipped)
                    .arg(skipped == 1 ? QStringLiteral("item") : QStringLiteral("items"));
    return text;
}

QString DiskCleanup::confirmation(qint64 bytes)
{
    return QStringLiteral("Permanently delete %1? These are caches and logs that apps recreate.").arg(sizeText(bytes));
}

} // namespace kestro
