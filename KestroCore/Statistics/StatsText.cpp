#include "KestroCore/Statistics/StatsText.h"

#include <array>
#include <cmath>

namespace kestro {

namespace {

constexpr std::array units{ "KB", "MB", "GB", "TB", "PB" };

// From megabytes on with digits behind the point, unless those are zeros.
QString scaled(double bytes, double step)
{
    if (!(bytes >= 0))
        return StatsText::none;
    if (std::round(bytes) < step) {
        const qint64 whole = std::llround(bytes);
        return whole == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(whole);
    }
    constexpr std::array digits{ 0, 1, 2, 2, 2 };
    std::size_t unit = 0;
    double value = bytes / step;
    const auto rounded = [&] {
        const double power = std::pow(10, digits.at(unit));
        return std::round(value * power) / power;
    };
    while (rounded() >= step && unit + 1 < units.size()) {
        value /= step;
        ++unit;
    }
    QString text = QString::number(rounded(), 'f', digits.at(unit));
    while (text.contains(u'.') && (text.endsWith(u'0') || text.endsWith(u'.'))) {
        const bool point = text.endsWith(u'.');
        text.chop(1);
        if (point)
            break;
    }
    return text + u' ' + QLatin1StringView(units.at(unit));
}

} // namespace

QString StatsText::percent(std::optional<double> share)
{
    return share && std::isfinite(*share) ? QStringLiteral("%1%").arg(std::llround(*share * 100)) : none;
}

QString StatsText::memory(std::optional<quint64> bytes) { return bytes ? scaled(double(*bytes), 1024) : none; }

QString StatsText::file(std::optional<double> bytes) { return bytes ? scaled(*bytes, 1000) : none; }

QString StatsText::rate(std::optional<double> bytesPerSecond)
{
    return bytesPerSecond ? file(bytesPerSecond) + QStringLiteral("/s") : none;
}

QString StatsText::watts(std::optional<double> watts) { return watts ? QString::asprintf("%.1f W", *watts) : none; }

} // namespace kestro
