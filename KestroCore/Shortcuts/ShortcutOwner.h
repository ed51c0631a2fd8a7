#pragma once

#include "KestroCore/Capture/CaptureMode.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QUuid>
#include <map>

namespace kestro {

/// The key of the table of shortcuts: a family of things that can have one, and which of them, by its UUID or its raw
/// string. A family of one has no members to tell apart. Features add families of their own.
class ShortcutOwner {
public:
    explicit ShortcutOwner(const QString& family, const QString& member = {})
        : m_family(family)
        , m_member(member)
    {
    }
    ShortcutOwner(const QString& family, const QUuid& member)
        : ShortcutOwner(family, member.toString(QUuid::WithoutBraces))
    {
    }

    static ShortcutOwner launchItem(const QUuid& id) { return { QStringLiteral("launchItem"), id }; }
    static ShortcutOwner capture(CaptureMode mode) { return ShortcutOwner(QStringLiteral("capture"), rawValue(mode)); }
    static ShortcutOwner openNotch() { return ShortcutOwner(QStringLiteral("openNotch")); }
    static ShortcutOwner clipboard() { return ShortcutOwner(QStringLiteral("clipboard")); }

    const QString& family() const { return m_family; }
    const QString& member() const { return m_member; }
    /// The member as a UUID; null where it is none.
    QUuid id() const { return QUuid::fromString(m_member); }

    bool operator==(const ShortcutOwner&) const = default;
    std::strong_ordering operator<=>(const ShortcutOwner& other) const;

private:
    QString m_family;
    QString m_member;
};

using ShortcutTable = std::map<ShortcutOwner, KeyCombo>;

/// Another owner in `table` that has `combo` already; an owner is never in conflict with itself.
std::optional<ShortcutOwner> conflict(const KeyCombo& combo, const ShortcutOwner& owner, const ShortcutTable& table);

} // namespace kestro
