#include "Kestro/Clipboard/ClipboardSettings.h"

#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Clipboard/ClipboardPreferences.h"
#include "Kestro/Platform/Workspace.h"
#include "KestroCore/Layout/PathParts.h"

namespace kestro {

ClipboardSettings::ClipboardSettings(ClipboardModel& model, PreferenceStore& preferences, Workspace& workspace)
    : m_model(model)
    , m_preferences(preferences)
    , m_workspace(workspace)
{
    connect(&preferences, &PreferenceStore::changed, this, &ClipboardSettings::changed);
    connect(&model, &ClipboardModel::storedDataChanged, this, &ClipboardSettings::storedDataChanged);
    connect(&model, &ClipboardModel::undoChanged, this, &ClipboardSettings::undoChanged);
}

bool ClipboardSettings::pastes() const { return prefs::clipboardPasteAfterPicking.read(m_preferences); }

void ClipboardSettings::setPastes(bool on) { prefs::clipboardPasteAfterPicking.write(m_preferences, on); }

bool ClipboardSettings::canPaste() const { return m_model.canPaste(); }

bool ClipboardSettings::masks() const { return prefs::clipboardMasksSecrets.read(m_preferences); }

void ClipboardSettings::setMasks(bool on) { prefs::clipboardMasksSecrets.write(m_preferences, on); }

bool ClipboardSettings::hasStoredData() const { return m_model.hasStoredData(); }

QString ClipboardSettings::undoText() const { return m_model.undoText(); }

// Those of another system's applications stay in the list, where they do no harm, and out of sight.
QVariantList ClipboardSettings::ignored() const
{
    QVariantList rows;
    for (const QString& id : prefs::ignoredClipboardApps(m_preferences)) {
        if (!id.startsWith(u"com.apple."))
            rows.append(
                QVariantMap{ { QStringLiteral("id"), id }, { QStringLiteral("name"), m_model.apps().name(id) } });
    }
    return rows;
}

QVariantList ClipboardSettings::apps() const
{
    const QStringList taken = prefs::ignoredClipboardApps(m_preferences);
    QVariantList options;
    for (const Application& each : m_workspace.applications()) {
        const QString id = pathParts::nameWithoutExtension(each.path);
        if (!taken.contains(id))
            options.append(QVariantMap{ { QStringLiteral("value"), id }, { QStringLiteral("title"), each.name } });
    }
    return options;
}

void ClipboardSettings::addIgnored(const QString& id)
{
    QStringList all = prefs::ignoredClipboardApps(m_preferences);
    if (!all.contains(id))
        prefs::clipboardIgnoredApps.write(m_preferences, all << id);
}

void ClipboardSettings::removeIgnored(const QString& id)
{
    QStringList all = prefs::ignoredClipboardApps(m_preferences);
    all.removeAll(id);
    prefs::clipboardIgnoredApps.write(m_preferences, all);
}

void ClipboardSettings::clear(bool includingPinned) { m_model.clear(includingPinned); }

void ClipboardSettings::undo() { m_model.undo(); }

} // namespace kestro
