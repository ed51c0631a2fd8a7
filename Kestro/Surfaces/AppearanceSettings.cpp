#include "Kestro/Surfaces/AppearanceSettings.h"

#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Preferences/SidebarPrefs.h"

#include <algorithm>

namespace kestro {

namespace {

/// How the pane reads and writes one preference.
struct Access {
    QLatin1StringView key;
    QVariant (*read)(const PreferenceStore&);
    bool (*write)(PreferenceStore&, const QVariant&);
};

template <class T> struct Value {
    using type = T;
};
template <class T> struct Value<std::optional<T>> {
    using type = T;
};

template <const auto& preference> QVariant read(const PreferenceStore& store)
{
    const auto value = preference.read(store);
    return Stored<std::decay_t<decltype(value)>>::to(value);
}

template <const auto& preference> bool write(PreferenceStore& store, const QVariant& given)
{
    using T = typename Value<std::decay_t<decltype(preference.read(store))>>::type;
    const auto value = Stored<T>::from(given);
    if (value)
        preference.write(store, *value);
    return value.has_value();
}

template <const auto& preference> constexpr Access plain()
{
    return { preference.key, read<preference>, write<preference> };
}

/// A setting that an older key still speaks for while it is absent.
template <auto member> QVariant readSidebar(const PreferenceStore& store)
{
    return rawValue(SidebarPrefs::current(store, false).*member);
}

bool writeIconSize(PreferenceStore& store, const QVariant& given)
{
    const auto size = Stored<DockIconSize>::from(given);
    if (size)
        prefs::dockIconSize.write(store, rawValue(*size));
    return size.has_value();
}

bool writeScale(PreferenceStore& store, const QVariant& given)
{
    // A view's whole number comes as an integer.
    const double scale = given.toDouble();
    prefs::dockMagnificationScale.write(store, prefs::clamps::magnification(scale));
    return true;
}

const Access table[] = {
    plain<prefs::displayMode>(),
    plain<prefs::sidebarEdge>(),
    plain<prefs::sidebarScreen>(),
    { prefs::sidebarVisibility.key, readSidebar<&SidebarPrefs::visibility>, write<prefs::sidebarVisibility> },
    plain<prefs::sidebarPlacement>(),
    plain<prefs::sidebarMaterial>(),
    plain<prefs::sidebarTint>(),
    { prefs::dockIconSize.key, readSidebar<&SidebarPrefs::iconSize>, writeIconSize },
    plain<prefs::dockMagnification>(),
    { prefs::dockMagnificationScale.key, read<prefs::dockMagnificationScale>, writeScale },
    plain<prefs::dockLiveTiles>(),
    plain<prefs::dockRunningIndicators>(),
    plain<prefs::tileStyle>(),
    plain<prefs::levelBars>(),
};

QVariantMap option(const QString& value, const QString& title)
{
    return { { QStringLiteral("value"), value }, { QStringLiteral("title"), title } };
}

} // namespace

AppearanceSettings::AppearanceSettings(PreferenceStore& preferences, const Screens& screens)
    : m_preferences(preferences)
    , m_screens(screens)
{
    connect(&preferences, &PreferenceStore::changed, this, &AppearanceSettings::changed);
    connect(&screens, &Screens::changed, this, &AppearanceSettings::changed);
}

QVariantMap AppearanceSettings::values() const
{
    QVariantMap values;
    for (const Access& each : table)
        values[each.key] = each.read(m_preferences);
    return values;
}

void AppearanceSettings::set(const QString& key, const QVariant& value)
{
    const auto* const found =
        std::find_if(std::begin(table), std::end(table), [&](const Access& each) { return each.key == key; });
    if (found == std::end(table) || !found->write(m_preferences, value))
        return qCritical("Kestro: the view wrote what is no setting under \"%s\"", qUtf8Printable(key));
    // Not only with the store's own notice, a turn later: a key that is pressed again by then begins from here.
    Q_EMIT changed();
}

QVariantList AppearanceSettings::screens() const
{
    QVariantList options{ option(QString(), QStringLiteral("Main screen")) };
    const QString stored = prefs::sidebarScreen.read(m_preferences);
    bool isThere = stored.isEmpty();
    QStringList names;
    for (const Screen& each : m_screens.all()) {
        isThere = isThere || each.name == stored;
        // Screens of one name cannot be told apart by it: the first of them is meant.
        if (!each.name.isEmpty() && !names.contains(each.name))
            names.append(each.name);
    }
    for (const QString& name : names)
        options.append(option(name, name));
    if (!isThere)
        options.append(option(stored, stored + QStringLiteral(" (disconnected) — using main screen")));
    return options;
}

double AppearanceSettings::smallestScale() const { return DockLayout::minScale; }

double AppearanceSettings::largestScale() const { return DockLayout::maxScaleLimit; }

} // namespace kestro
