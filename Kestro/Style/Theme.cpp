#include "Theme.h"

#include <QFontDatabase>
#include <QHash>
#include <QJSEngine>
#include <QQmlEngine>
#include <QVariant>

#include <algorithm>
#include <numbers>

namespace kestro {

namespace {

constexpr char engineProperty[] = "kestroTheme";
constexpr qreal secondaryShare = 0.62;
constexpr qreal lineShare = 0.14;

QColor share(QColor color, qreal alpha)
{
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QString interfaceFamily(const QString& wanted)
{
    if (!wanted.isEmpty() && QFontDatabase::hasFamily(wanted)) {
        return wanted;
    }
    const QString inter = QStringLiteral("Inter");
    return QFontDatabase::hasFamily(inter) ? inter : QStringLiteral("sans-serif");
}

} // namespace

Theme::Theme(const Appearance& appearance, QObject* parent)
    : QObject(parent)
    , m_appearance(appearance)
    , m_look(appearance.look())
    , m_family(interfaceFamily(m_look.fontFamily))
{
    connect(&appearance, &Appearance::changed, this, &Theme::follow);
}

void Theme::install(QQmlEngine& engine)
{
    // The engine carries it, so that there need be no global from which `create` takes it.
    engine.setProperty(engineProperty, QVariant::fromValue(this));
}

Theme* Theme::create(QQmlEngine* engine, QJSEngine*)
{
    auto* theme = engine->property(engineProperty).value<Theme*>();
    if (!theme) {
        qFatal("Kestro: Theme::install was not called for this engine");
    }
    QJSEngine::setObjectOwnership(theme, QJSEngine::CppOwnership);
    return theme;
}

void Theme::follow()
{
    const Look look = m_appearance.look();
    if (look == m_look) {
        return;
    }
    if (look.fontFamily != m_look.fontFamily) {
        m_family = interfaceFamily(look.fontFamily);
    }
    m_look = look;
    Q_EMIT changed();
}

void Theme::setComposited(bool composited)
{
    if (m_composited != composited) {
        m_composited = composited;
        Q_EMIT changed();
    }
}

QColor Theme::either(QRgb light, QRgb dark) const { return QColor::fromRgb(m_look.dark ? dark : light); }

QColor Theme::ink() const { return either(0xFF1C1C1E, 0xFFFFFFFF); }
QColor Theme::secondaryInk() const { return share(ink(), secondaryShare); }
QColor Theme::line() const { return share(ink(), lineShare); }
QColor Theme::hover() const { return share(ink(), m_look.dark ? 0.10 : 0.07); }
QColor Theme::window() const { return either(0xFFF5F5F7, 0xFF1E1E20); }
QColor Theme::card() const { return either(0xFFF5F5F7, 0xFF1E1E20); }
QColor Theme::hairline() const { return m_look.dark ? share(Qt::white, 0.15) : share(Qt::black, 0.11); }

QColor Theme::sidebar() const { return either(0xFFEBEBEF, 0xFF171719); }
QColor Theme::group() const { return either(0xFFFFFFFF, 0xFF29292C); }
QColor Theme::control() const { return share(ink(), m_look.dark ? 0.11 : 0.06); }
QColor Theme::shade() const { return share(Qt::black, m_look.dark ? 0.5 : 0.22); }
QColor Theme::knob() const { return either(0xFFFFFFFF, 0xFFE9E9EC); }

QColor Theme::onAccent() const
{
    // The desktop's accent may be any colour, a pale yellow included.
    constexpr int pale = 170;
    return qGray(m_look.accent.rgb()) > pale ? QColor(0x1C, 0x1C, 0x1E) : QColor(Qt::white);
}

QColor Theme::red() const { return either(0xFFFF3B30, 0xFFFF453A); }
QColor Theme::orange() const { return either(0xFFFF9500, 0xFFFF9F0A); }
QColor Theme::yellow() const { return either(0xFFFFCC00, 0xFFFFD60A); }
QColor Theme::green() const { return either(0xFF34C759, 0xFF30D158); }
QColor Theme::blue() const { return either(0xFF0A84FF, 0xFF409CFF); }
QColor Theme::purple() const { return either(0xFFAF52DE, 0xFFBF5AF2); }
QColor Theme::pink() const { return either(0xFFFF2D55, 0xFFFF375F); }
QColor Theme::gray() const { return either(0xFF8E8E93, 0xFF98989D); }

QColor Theme::redInk() const { return either(0xFFD70015, 0xFFFF6961); }
QColor Theme::orangeInk() const { return either(0xFFC25E00, 0xFFFF9F0A); }
QColor Theme::greenInk() const { return either(0xFF1E7F38, 0xFF30D158); }

QColor Theme::tint(const QString& name) const
{
    using Getter = QColor (Theme::*)() const;
    static const QHash<QString, Getter> getters{
        { QStringLiteral("accent"), &Theme::accent },
        { QStringLiteral("red"), &Theme::red },
        { QStringLiteral("orange"), &Theme::orange },
        { QStringLiteral("yellow"), &Theme::yellow },
        { QStringLiteral("green"), &Theme::green },
        { QStringLiteral("blue"), &Theme::blue },
        { QStringLiteral("purple"), &Theme::purple },
        { QStringLiteral("pink"), &Theme::pink },
        { QStringLiteral("graphite"), &Theme::gray },
    };
    const Getter getter = getters.value(name, nullptr);
    return getter ? (this->*getter)() : QColor(Qt::transparent);
}

QColor Theme::meter(qreal level, const QString& style) const
{
    if (style == u"accent") {
        return accent();
    }
    return level < 0.6 ? green() : level < 0.85 ? yellow() : red();
}

QFont Theme::font(int pixels, QFont::Weight weight) const
{
    QFont font(m_family);
    font.setPixelSize(std::max(1, qRound(pixels * m_look.textScale)));
    font.setWeight(weight);
    return font;
}

QFont Theme::paneFont() const { return font(20, QFont::DemiBold); }
QFont Theme::titleFont() const { return font(15, QFont::DemiBold); }
QFont Theme::bodyFont() const { return font(13, QFont::Normal); }
QFont Theme::strongFont() const { return font(13, QFont::Medium); }
QFont Theme::captionFont() const { return font(12, QFont::Normal); }

// SpringAnimation adds `spring` times the distance to the velocity every 16 ms, and takes `damping` times the
// velocity from it; the equation of motion gives the rest.
constexpr qreal springStep = 0.016;

qreal Theme::springStrength(qreal response) const
{
    const qreal frequency = 2 * std::numbers::pi / response;
    return frequency * frequency * springStep;
}

qreal Theme::springDamping(qreal response, qreal fraction) const
{
    return 2 * fraction * (2 * std::numbers::pi / response) * springStep;
}

} // namespace kestro
