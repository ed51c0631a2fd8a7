#pragma once

#include "KestroCore/Layout/LaunchItem.h"

namespace kestro {

enum class LauncherError { full, duplicateWidget, tooManyDividers };

/// The layout: an ordered list with limits. After every operation it holds at most `maxItems` items, `maxDividers`
/// dividers, and each widget once; what would break that is refused whole.
///
/// Positions "among ids" are positions in a list that the user sees, which may leave out items of the layout
/// and may name items that are gone.
class LauncherStore {
public:
    static constexpr qsizetype maxItems = 16; ///< applications, links and widgets together
    static constexpr qsizetype maxDividers = 8; ///< on top of the items

    LauncherStore() = default;
    /// Keeps the order and drops what breaks the limits: a widget seen before, dividers and items past the last
    /// allowed.
    explicit LauncherStore(const QList<LaunchItem>& items);

    const QList<LaunchItem>& items() const { return m_items; }
    qsizetype itemCount() const; ///< without the dividers
    qsizetype dividerCount() const;
    bool contains(WidgetKind kind) const;
    const LaunchItem* item(const QUuid& id) const; ///< null if there is none; valid until the next change

    bool operator==(const LauncherStore&) const = default;

    /// Nothing on success. Capacity is tested before duplicates. `index` is clamped to 0...count.
    [[nodiscard]] std::optional<LauncherError> add(const LaunchItem& item) { return insert(item, m_items.size()); }
    [[nodiscard]] std::optional<LauncherError> insert(const LaunchItem& item, qsizetype index);

    /// The items that a batch really added, without those that are in the layout or earlier in the batch.
    using Inserted = std::variant<QList<LaunchItem>, LauncherError>;
    /// All or nothing. Only `full` and `tooManyDividers` can be wrong.
    [[nodiscard]] Inserted insert(const QList<LaunchItem>& items, qsizetype position, const QList<QUuid>& among);
    /// The items that such an insert would add; nothing if it would be refused.
    std::optional<QList<LaunchItem>> fresh(const QList<LaunchItem>& items) const;

    /// The index in `items()` of a position among `ids`; past their end, one behind the last of them that exists.
    qsizetype index(qsizetype position, const QList<QUuid>& among) const;

    void move(const QUuid& id, qsizetype to, const QList<QUuid>& among);
    /// Steps over `by` neighbours among `ids`, to before the one reached (by < 0) or behind it; past either end, stays.
    void moveBy(const QUuid& id, qsizetype by, const QList<QUuid>& among);
    void moveBy(const QUuid& id, qsizetype by);
    /// The items at `offsets`, in their order, land before the item that was at `to` (0...count); out of range, stays.
    void moveOffsets(const std::set<qsizetype>& offsets, qsizetype to);

    void remove(const QUuid& id);
    void setShortcut(const std::optional<KeyCombo>& combo, const QUuid& id);

    /// Links of the decoded array whose address does not parse. They are no items, but `encoded` has their bytes.
    qsizetype unreadableCount() const { return m_unreadable.size(); }

    /// One JSON array. An unreadable element stands behind the item that it stood behind.
    QByteArray encoded() const;
    struct Decoded; ///< `store`, cleaned; and `corrupt`: the bytes when they were no layout
    /// Keeps at most `maxItems` unreadable elements.
    static Decoded decode(const std::optional<QByteArray>& data);

    /// The items without the widgets that are not both available and enabled.
    static QList<LaunchItem> visibleItems(
        const QList<LaunchItem>& items, const std::set<WidgetKind>& enabled, const QList<WidgetKind>& available);
    /// The items of a layout from before widgets could be placed, with the enabled ones behind them (Stats always);
    /// nothing if a widget is there already.
    static std::optional<QList<LaunchItem>> migrated(
        const QList<LaunchItem>& items, const std::set<WidgetKind>& enabled, const NewId& newId);
    /// The http or https URL that the user typed, https where no scheme was; nothing for anything else.
    static std::optional<QUrl> validatedURL(const QString& text);

private:
    qsizetype indexOf(const QUuid& id) const; ///< -1 if there is none

    struct Unreadable {
        QUuid behind; ///< null at the start of the array
        QByteArray json;
        bool operator==(const Unreadable&) const = default;
    };

    QList<LaunchItem> m_items;
    QList<Unreadable> m_unreadable;
};

struct LauncherStore::Decoded {
    LauncherStore store;
    std::optional<QByteArray> corrupt{};
};

} // namespace kestro
