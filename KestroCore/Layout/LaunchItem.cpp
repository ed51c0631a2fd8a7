#include "KestroCore/Layout/LaunchItem.h"

#include "KestroCore/Layout/PathParts.h"
#include "KestroCore/Support/Uuid.h"

#include <QDir>
#include <nlohmann/json.hpp>

namespace kestro {

namespace {
using json = nlohmann::json;

template <class... Functions> struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

std::optional<QString> string(const json& object, const char* key)
{
    const auto field = object.find(key);
    if (field == object.end() || !field->is_string())
        return std::nullopt;
    return QString::fromStdString(field->get_ref<const std::string&>());
}

std::optional<LaunchItem::Kind> kindOf(const std::string& key, const json& payload)
{
    if (!payload.is_object())
        return std::nullopt;
    if (key == "divider")
        return LaunchItem::Divider{};
    if (key == "app") {
        const auto path = string(payload, "path");
        return path ? std::optional<LaunchItem::Kind>(LaunchItem::App{ *path }) : std::nullopt;
    }
    if (key == "widget") {
        const auto raw = string(payload, "kind");
        const auto widget = raw ? fromRaw<WidgetKind>(*raw) : std::nullopt;
        return widget ? std::optional<LaunchItem::Kind>(LaunchItem::Widget{ *widget }) : std::nullopt;
    }
    if (key == "link") {
        const auto address = string(payload, "url");
        const auto title = string(payload, "title");
        // Lenient, unlike what the user types. An address that fails even so is an empty URL.
        return address && title
            ? std::optional<LaunchItem::Kind>(LaunchItem::Link{ QUrl(*address, QUrl::TolerantMode), *title })
            : std::nullopt;
    }
    return std::nullopt;
}

json kindJson(const LaunchItem::Kind& kind)
{
    return std::visit(Overloaded{
                          [](const LaunchItem::App& app) {
                              return json{ { "app", { { "path", app.path.toStdString() } } } };
                          },
                          [](const LaunchItem::Link& link) {
                              const json payload{ { "url", link.url.toString(QUrl::FullyEncoded).toStdString() },
                                  { "title", link.title.toStdString() } };
                              return json{ { "link", payload } };
                          },
                          [](const LaunchItem::Widget& widget) {
                              return json{ { "widget", { { "kind", rawValue(widget.kind).toStdString() } } } };
                          },
                          [](const LaunchItem::Divider&) {
                              return json{ { "divider", json::object() } };
                          },
                      },
        kind);
}
} // namespace

std::optional<WidgetKind> LaunchItem::widget() const
{
    const auto* found = std::get_if<Widget>(&kind);
    return found ? std::optional(found->kind) : std::nullopt;
}

QString LaunchItem::name() const
{
    return std::visit(Overloaded{
                          [](const App& app) { return pathParts::nameWithoutExtension(app.path); },
                          [](const Link& link) {
                              QString trimmed = link.title.trimmed();
                              if (!trimmed.isEmpty())
                                  return trimmed;
                              const QString shownHost = link.url.host();
                              return shownHost.isEmpty() ? link.url.toString(QUrl::FullyEncoded) : shownHost;
                          },
                          [](const Widget& widget) { return title(widget.kind); },
                          [](const Divider&) { return QStringLiteral("Divider"); },
                      },
        kind);
}

QString LaunchItem::symbol() const
{
    if (const auto shown = widget())
        return kestro::symbol(*shown);
    return link() ? QStringLiteral("globe") : QStringLiteral("app");
}

ItemAction LaunchItem::action() const
{
    using Verb = ItemAction::Verb;
    const auto shown = widget();
    if (!shown)
        return { isDivider() ? Verb::none : Verb::open };
    if (*shown == WidgetKind::keyboardCleaner)
        return { Verb::startCleaner };
    return { hasWindow(*shown) ? Verb::openWindow : Verb::showCard, shown };
}

bool LaunchItem::isSame(const LaunchItem& other) const
{
    if (app() && other.app())
        return QDir::cleanPath(app()->path) == QDir::cleanPath(other.app()->path);
    if (link() && other.link())
        return link()->url == other.link()->url;
    return widget() && widget() == other.widget();
}

bool LaunchItem::isReadable() const { return !link() || (link()->url.isValid() && !link()->url.isEmpty()); }

QString LaunchItem::host() const { return link() ? link()->url.host(QUrl::FullyEncoded).toLower() : QString(); }

json LaunchItem::toJson() const
{
    json object{ { "id", uuidText(id).toStdString() }, { "kind", kindJson(kind) } };
    if (shortcut)
        object["shortcut"] = shortcut->toJson();
    return object;
}

std::optional<LaunchItem> LaunchItem::fromJson(const json& json)
{
    if (!json.is_object())
        return std::nullopt;
    const auto idText = string(json, "id");
    const auto id = idText ? parseUuid(*idText) : std::nullopt;
    const auto kinds = json.find("kind");
    if (!id || kinds == json.end() || !kinds->is_object() || kinds->size() != 1)
        return std::nullopt;
    const auto kind = kindOf(kinds->begin().key(), kinds->begin().value());
    if (!kind)
        return std::nullopt;

    LaunchItem item{ *id, *kind };
    const auto combo = json.find("shortcut");
    if (combo != json.end() && !combo->is_null()) {
        item.shortcut = KeyCombo::fromJson(*combo);
        if (!item.shortcut)
            return std::nullopt;
    }
    return item;
}

} // namespace kestro
