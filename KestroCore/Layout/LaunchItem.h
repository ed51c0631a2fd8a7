#pragma once

#include "KestroCore/Layout/WidgetKind.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QUrl>
#include <QUuid>
#include <functional>
#include <variant>

namespace kestro {

/// Where new identities come from, so that rules stay free of randomness: `QUuid::createUuid` outside tests.
using NewId = std::function<QUuid()>;

/// An item's primary action.
struct ItemAction {
    enum class Verb { openWindow, showCard, open, startCleaner, none };

    Verb verb = Verb::none;
    std::optional<WidgetKind> kind{}; ///< of `openWindow` and `showCard` alone

    bool operator==(const ItemAction&) const = default;
};

/// One entry of the layout.
struct LaunchItem {
    struct App {
        QString path; ///< of the application's entry
        bool operator==(const App&) const = default;
    };
    struct Link {
        QUrl url;
        QString title; ///< may be empty
        bool operator==(const Link&) const = default;
    };
    struct Widget {
        WidgetKind kind;
        bool operator==(const Widget&) const = default;
    };
    struct Divider {
        bool operator==(const Divider&) const = default;
    };
    using Kind = std::variant<App, Link, Widget, Divider>;

    QUuid id;
    Kind kind;
    std::optional<KeyCombo> shortcut{};

    bool operator==(const LaunchItem&) const = default;

    const App* app() const { return std::get_if<App>(&kind); }
    const Link* link() const { return std::get_if<Link>(&kind); }
    std::optional<WidgetKind> widget() const;
    bool isDivider() const { return std::holds_alternative<Divider>(kind); }

    /// Never empty but for an application whose path is. An application's localised name is the platform's to tell;
    /// this is the file's name without its extension.
    QString name() const;
    /// The name of the symbol that stands for it where it has no icon of its own.
    QString symbol() const;
    ItemAction action() const;
    /// Whether both stand for the same thing, whatever their ids and titles. Dividers never do.
    bool isSame(const LaunchItem& other) const;

    /// False for a link whose address does not parse: no layout holds it.
    bool isReadable() const;

    /// The link's host in lower case and ASCII form, empty where it has none and for other items.
    QString host() const;

    /// {"id", "kind": {one key}, "shortcut"?}
    nlohmann::json toJson() const;
    /// Nothing for any other shape, an unknown widget included. A link whose address does not parse is not readable.
    static std::optional<LaunchItem> fromJson(const nlohmann::json& json);
};

} // namespace kestro
