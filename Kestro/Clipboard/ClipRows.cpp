#include "Kestro/Clipboard/ClipRows.h"

#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Style/Symbols.h"
#include "KestroCore/Clipboard/SecretGuard.h"

namespace kestro {

namespace {

constexpr qsizetype longestLine = 300; // code units; wider than any row
constexpr qsizetype numbered = 9;

QString kindSymbol(const ClipEntry::Kind& kind)
{
    if (std::holds_alternative<ClipEntry::Text>(kind))
        return symbols::textAlignLeft;
    if (std::holds_alternative<ClipEntry::Link>(kind))
        return symbols::link;
    return std::holds_alternative<ClipEntry::Image>(kind) ? symbols::photo : symbols::docOnDoc;
}

} // namespace

QString clipAge(double seconds)
{
    const auto ago = [](double count, QChar unit) { return QStringLiteral("%1%2 ago").arg(qint64(count)).arg(unit); };
    if (seconds < 60)
        return QStringLiteral("now");
    if (seconds < 3600)
        return ago(seconds / 60, u'm');
    return seconds < 86400 ? ago(seconds / 3600, u'h') : ago(seconds / 86400, u'd');
}

ClipRows::ClipRows(ClipboardModel& model, const MainLoop& loop)
    : m_model(model)
    , m_loop(loop)
{
}

void ClipRows::show(const QList<ClipEntry>& entries)
{
    const qsizetype before = m_entries.size();
    if (entries.size() < before) {
        beginRemoveRows({}, int(entries.size()), int(before - 1));
        m_entries.resize(entries.size());
        endRemoveRows();
    } else if (entries.size() > before) {
        beginInsertRows({}, int(before), int(entries.size() - 1));
        m_entries = entries;
        endInsertRows();
    }
    m_entries = entries;
    refresh();
    if (entries.size() != before)
        Q_EMIT countChanged();
}

void ClipRows::refresh()
{
    if (!m_entries.isEmpty())
        Q_EMIT dataChanged(index(0), index(count() - 1));
}

QList<QUuid> ClipRows::ids() const
{
    QList<QUuid> all;
    all.reserve(m_entries.size());
    for (const ClipEntry& each : m_entries)
        all.append(each.id);
    return all;
}

int ClipRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QString ClipRows::header(qsizetype row) const
{
    if (m_entries[row].pinned)
        return row == 0 ? QStringLiteral("Pinned") : QString();
    return row > 0 && m_entries[row - 1].pinned ? QStringLiteral("Recent") : QString();
}

QString ClipRows::mask(const ClipEntry& entry) const
{
    return m_model.isMasked(entry) ? SecretGuard::masked(std::get<ClipEntry::Text>(entry.kind).text) : QString();
}

QVariant ClipRows::data(const QModelIndex& index, int role) const
{
    const ClipEntry& entry = m_entries[index.row()];
    switch (role) {
    case EntryId:
        return entry.id.toString(QUuid::WithoutBraces);
    case Line:
        return ClipText::shown(entry.preview(), longestLine);
    case Mask:
        return mask(entry);
    case KindSymbol:
        return kindSymbol(entry.kind);
    case Thumbnail:
        return m_model.thumbnail(entry);
    case AppIcon:
        return m_model.appIcon(entry);
    case Pinned:
        return entry.pinned;
    case Header:
        return header(index.row());
    case Age:
        return clipAge(m_loop.now() - entry.date);
    case Number:
        return index.row() < numbered ? index.row() + 1 : 0;
    case Copied:
        return m_model.copiedId() == entry.id;
    case Name: {
        const QString hidden = mask(entry);
        const QString what =
            hidden.isEmpty() ? ClipText::shown(entry.preview(), longestLine) : QStringLiteral("hidden");
        return QString(what + QStringLiteral(", ") + clipAge(m_loop.now() - entry.date));
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> ClipRows::roleNames() const
{
    return { { EntryId, "entryId" }, { Line, "line" }, { Mask, "mask" }, { KindSymbol, "kindSymbol" },
        { Thumbnail, "thumbnail" }, { AppIcon, "appIcon" }, { Pinned, "pinned" }, { Header, "header" }, { Age, "age" },
        { Number, "number" }, { Copied, "copied" }, { Name, "name" } };
}

} // namespace kestro
