#pragma once

#include "Kestro/Platform/PreferenceStore.h"

#include "FileWatch.h"
#include "PreferenceDocument.h"

#include <QTimer>

namespace kestro {

class Log;
struct PreferenceReading;

/// The domain as one JSON object in a file that other programs may write too: their changes take effect at once, and
/// writing merges what changed here into what they left. How values are spelled is told in PreferenceValue.h.
///
/// A file that doesn't parse leaves the values in force while the program runs; at start, and before we write, it is
/// moved to "<name>.corrupt.json". A file that is gone for a second holds no values.
class PreferenceFile final : public PreferenceStore {
    Q_OBJECT
public:
    /// Reads the file at `path`, and creates its folder. `log` outlives this.
    PreferenceFile(const QString& path, Log& log);
    ~PreferenceFile() override;

    QVariant value(const QString& key) const override { return m_values.value(key); }
    void setValue(const QString& key, const QVariant& value) override;
    /// Also from an atexit handler: it needs neither the loop nor the application object.
    void flush() override;

private:
    using Values = PreferenceDocument::Values;

    void readAtStart();
    void watch();
    void look();
    void believeAbsence();
    void takeOver(const PreferenceReading& reading);
    void adopt(const Values& inFile);
    void put(const QString& key, const QVariant& value);
    void scheduleTurn();
    void turn();
    void save();
    QString trySave();
    QString setAside(const QByteArray& target, const QByteArray& content);

    const QByteArray m_path;
    const QByteArray m_corruptPath;
    Log& m_log;
    FileWatch m_watch;
    QTimer m_absence;

    Values m_values; // in force
    Values m_unsaved; // set here and not on the disk; an invalid one is to be removed
    Values m_former; // of the keys that changed in this turn, what they were when last told
    QByteArray m_content; // of the file when it last parsed: what we wrote ourselves is known by it
    QString m_lastFailure;
    bool m_turnScheduled = false;
    bool m_watchFailureTold = false;
};

} // namespace kestro
