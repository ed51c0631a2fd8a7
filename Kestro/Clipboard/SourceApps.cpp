#include "Kestro/Clipboard/SourceApps.h"

#include "Kestro/Platform/Workspace.h"
#include "KestroCore/Layout/PathParts.h"

namespace kestro {

namespace {
constexpr int sourceIconPixels = 64;
}

SourceApps::SourceApps(Workspace& workspace)
    : m_workspace(workspace)
{
}

// Window classes are no ids: "Gimp-2.10", "org.gnome.TextEditor", "XTerm" of "debian-xterm". The surer keys win.
void SourceApps::list()
{
    m_isListed = true;
    for (const Application& each : m_workspace.applications())
        m_entries.append({ pathParts::nameWithoutExtension(each.path), each.name, each.path });
    const auto add = [this](const QString& key, qsizetype entry) {
        if (!key.isEmpty() && !m_byKey.contains(key.toLower()))
            m_byKey.insert(key.toLower(), entry);
    };
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        add(m_entries[i].id, i);
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        add(m_entries[i].id.section(u'.', -1), i);
        add(m_entries[i].name, i);
    }
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        add(m_entries[i].id.section(u'-', -1), i);
}

const SourceApps::Entry* SourceApps::find(const QString& key)
{
    if (!m_isListed)
        list();
    const auto found = m_byKey.constFind(key.toLower());
    return found == m_byKey.cend() ? nullptr : &m_entries[*found];
}

std::optional<SourceApps::App> SourceApps::app(const PasteboardProgram& program)
{
    if (program.windowClass.isEmpty())
        return std::nullopt;
    if (const Entry* entry = find(program.windowClass))
        return App{ entry->id, entry->name };
    return App{ program.windowClass, program.windowClass };
}

QString SourceApps::name(const QString& id)
{
    const Entry* entry = find(id);
    return entry ? entry->name : id;
}

QImage SourceApps::icon(const QString& id)
{
    const auto known = m_icons.constFind(id);
    if (known != m_icons.cend())
        return *known;
    const Entry* entry = find(id);
    return *m_icons.insert(id, entry ? m_workspace.icon(entry->path, sourceIconPixels) : QImage());
}

} // namespace kestro
