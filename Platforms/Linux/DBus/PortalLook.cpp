#include "PortalLook.h"

#include <QDBusArgument>
#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace kestro::PortalLook {
namespace {

const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString interfaceGroup = QStringLiteral("org.gnome.desktop.interface");

std::optional<QColor> colour(const QVariant& value)
{
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)"))
        return std::nullopt;
    std::array<double, 3> channels{};
    argument.beginStructure();
    for (double& channel : channels)
        argument >> channel;
    argument.endStructure();
    // Outside of 0 to 1 stands for "none chosen".
    if (!std::all_of(channels.begin(), channels.end(), [](double c) { return c >= 0 && c <= 1; }))
        return std::nullopt;
    return QColor::fromRgbF(
        static_cast<float>(channels[0]), static_cast<float>(channels[1]), static_cast<float>(channels[2]));
}

std::optional<double> textScale(const QVariant& value)
{
    constexpr double smallest = 0.5;
    constexpr double largest = 3;
    if (value.metaType() != QMetaType::fromType<double>() || !std::isfinite(value.toDouble()))
        return std::nullopt;
    return std::clamp(value.toDouble(), smallest, largest);
}

bool isStyleWord(const QString& word)
{
    static const QRegularExpression style(
        QStringLiteral(
            "^(semi|demi|extra|ultra)?-?(normal|regular|book|roman|italic|oblique|small-caps|thin|light|medium"
            "|bold|heavy|black|condensed|expanded)$"),
        QRegularExpression::CaseInsensitiveOption);
    return style.match(word).hasMatch();
}

bool isSize(QString word)
{
    if (word.endsWith(QLatin1String("px")))
        word.chop(2);
    bool isNumber = false;
    word.toDouble(&isNumber);
    return isNumber;
}

} // namespace

QStringList groups() { return { appearanceGroup, interfaceGroup }; }

Look read(const QMap<QString, QVariantMap>& settings, const Look& fallback)
{
    Look look = fallback;
    const QVariantMap appearance = settings.value(appearanceGroup);
    enum Scheme : uint { NoPreference, Dark, Light };
    const uint scheme = appearance.value(QStringLiteral("color-scheme")).toUInt();
    if (scheme == Dark || scheme == Light)
        look.dark = scheme == Dark;
    look.accent = colour(appearance.value(QStringLiteral("accent-color"))).value_or(fallback.accent);

    const QVariantMap interface = settings.value(interfaceGroup);
    const QVariant animations = interface.value(QStringLiteral("enable-animations"));
    if (animations.metaType() == QMetaType::fromType<bool>())
        look.reduceMotion = !animations.toBool();
    look.textScale = textScale(interface.value(QStringLiteral("text-scaling-factor"))).value_or(fallback.textScale);
    const QString family = fontFamily(interface.value(QStringLiteral("font-name")).toString());
    if (!family.isEmpty())
        look.fontFamily = family;
    return look;
}

QString fontFamily(const QString& description)
{
    QStringList words = description.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (!words.isEmpty() && isSize(words.back()))
        words.removeLast();
    // A comma ends the family, whatever its last word. A family that is one style word is a family.
    while (words.size() > 1 && !words.back().endsWith(QLatin1Char(',')) && isStyleWord(words.back()))
        words.removeLast();
    QString family = words.join(QLatin1Char(' '));
    while (family.endsWith(QLatin1Char(',')))
        family.chop(1);
    return family.section(QLatin1Char(','), 0, 0).trimmed(); // the first of a list
}

} // namespace kestro::PortalLook
