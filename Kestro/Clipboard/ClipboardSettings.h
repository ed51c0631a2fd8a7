#pragma once

#include "Kestro/Preferences/Preference.h"

#include <QObject>
#include <QQmlEngine>
#include <QVariantList>

namespace kestro {

class ClipboardModel;
class Workspace;

/// The switches of the clipboard and the applications that it never records from. Main thread.
class ClipboardSettings final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool pastes READ pastes WRITE setPastes NOTIFY changed)
    Q_PROPERTY(bool canPaste READ canPaste NOTIFY changed)
    Q_PROPERTY(bool masks READ masks WRITE setMasks NOTIFY changed)
    Q_PROPERTY(bool hasStoredData READ hasStoredData NOTIFY storedDataChanged)
    Q_PROPERTY(QString undoText READ undoText NOTIFY undoChanged)
    /// Maps of "id" and "name".
    Q_PROPERTY(QVariantList ignored READ ignored NOTIFY changed)
public:
    /// All must outlive it.
    ClipboardSettings(ClipboardModel& model, PreferenceStore& preferences, Workspace& workspace);

    bool pastes() const;
    void setPastes(bool on);
    bool canPaste() const;
    bool masks() const;
    void setMasks(bool on);
    bool hasStoredData() const;
    QString undoText() const;
    QVariantList ignored() const;
    /// Maps of "value" and "title": the desktop's applications that are not ignored yet.
    Q_INVOKABLE QVariantList apps() const;
    Q_INVOKABLE void addIgnored(const QString& id);
    Q_INVOKABLE void removeIgnored(const QString& id);
    Q_INVOKABLE void clear(bool includingPinned);
    Q_INVOKABLE void undo();

Q_SIGNALS:
    void changed();
    void storedDataChanged();
    void undoChanged();

private:
    ClipboardModel& m_model;
    PreferenceStore& m_preferences;
    Workspace& m_workspace;
};

} // namespace kestro
