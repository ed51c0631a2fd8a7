#include "TrayMenu.h"

#include <QDBusError>
#include <QGuiApplication>
#include <QMetaObject>

namespace kestro {
namespace {

// An underscore marks the letter that opens an entry; two stand for one.
QString label(QString title) { return title.replace(QLatin1Char('_'), QLatin1String("__")); }

} // namespace

void TrayMenu::setEntries(QList<MenuEntry> entries)
{
    m_entries = std::move(entries);
    Q_EMIT LayoutUpdated(++m_revision, 0);
}

uint TrayMenu::version() const
{
    constexpr uint protocol = 3;
    return protocol;
}

QString TrayMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

// Properties with the protocol's default are left out. An empty list of names stands for all.
QVariantMap TrayMenu::properties(int id, const QStringList& names) const
{
    QVariantMap all;
    if (id == 0) {
        all = { { QStringLiteral("children-display"), QStringLiteral("submenu") } };
    } else if (const MenuEntry& entry = m_entries[id - 1]; entry.isSeparator()) {
        all = { { QStringLiteral("type"), QStringLiteral("separator") } };
    } else {
        all = { { QStringLiteral("label"), label(entry.title) } };
        if (!entry.enabled)
            all.insert(QStringLiteral("enabled"), false);
    }
    if (!names.isEmpty())
        all.removeIf([&](const auto& property) { return !names.contains(property.key()); });
    return all;
}

bool TrayMenu::refusesUnknown(int id)
{
    if (knows(id))
        return false;
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("The menu has no such entry."));
    return true;
}

uint TrayMenu::GetLayout(int parentId, int recursionDepth, const QStringList& names, TrayMenuLayout& layout)
{
    if (refusesUnknown(parentId))
        return m_revision;
    layout.entry = { parentId, properties(parentId, names) };
    if (parentId == 0 && recursionDepth != 0) {
        for (int id = 1; id <= m_entries.size(); ++id)
            layout.children.append(TrayMenuLayout{ { id, properties(id, names) }, {} });
    }
    return m_revision;
}

QList<TrayMenuProperties> TrayMenu::GetGroupProperties(const QList<int>& ids, const QStringList& names)
{
    QList<TrayMenuProperties> found;
    for (const int id : ids) {
        if (knows(id))
            found.append({ id, properties(id, names) });
    }
    return found;
}

QDBusVariant TrayMenu::GetProperty(int id, const QString& name)
{
    if (refusesUnknown(id))
        return {};
    const QVariant value = properties(id, {}).value(name);
    if (!value.isValid() && calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("The entry has no such property."));
    return QDBusVariant(value);
}

void TrayMenu::Event(int id, const QString& name, const QDBusVariant&, uint)
{
    if (!refusesUnknown(id) && name == QLatin1String("clicked"))
        run(id);
}

QList<int> TrayMenu::EventGroup(const QList<TrayMenuEvent>& events)
{
    QList<int> unknown;
    for (const TrayMenuEvent& event : events) {
        if (!knows(event.id))
            unknown.append(event.id);
        else if (event.name == QLatin1String("clicked"))
            run(event.id);
    }
    if (!events.isEmpty() && unknown.size() == events.size() && calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("The menu has no such entries."));
    return unknown;
}

bool TrayMenu::AboutToShow(int id)
{
    refusesUnknown(id);
    return false;
}

QList<int> TrayMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& unknown)
{
    for (const int id : ids) {
        if (!knows(id))
            unknown.append(id);
    }
    return {};
}

// On a later turn: the panel has its answer first, and an action may end the program.
void TrayMenu::run(int id)
{
    if (id == 0 || !m_entries[id - 1].enabled || !m_entries[id - 1].action)
        return;
    QMetaObject::invokeMethod(
        this,
        [this, revision = m_revision, action = m_entries[id - 1].action] {
            if (revision == m_revision)
                action();
        },
        Qt::QueuedConnection);
}

} // namespace kestro
