#pragma once

#include "Kestro/Platform/PreferenceStore.h"

#include "FileWatch.h"
#include "PreferenceDisk.h"

#include <QTimer>

namespace kestro {

class Log;

/// The domain as one JSON object in a file that other programs may write too: their changes take effect at once, and
/// writing merges what changed here into what they left. How values are spelled is told in PreferenceValue.h.
///
/// The file is written and read on a queue; the main thread waits for it at the start and in `flush` alone. A write
/// that failed is tried again, first after two seconds, then less and less often.
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
    QString saveError() const override { return m_saveError; }

    /// From any thread, also while the main thread hangs: `flush` without telling anybody. Returns whether everything
    /// is saved.
    bool saveNow() { return m_disk.flush(); }

private:
    using Values = PreferenceDisk::Values;
    static constexpr int firstRetryMilliseconds = 2000;

    void watch();
    void look();
    void takeOutcomes();
    void take(const PreferenceDisk::Outcome& outcome);
    void adopt(const Values& inFile);
    void noteSaved(quint64 number);
    void noteFailure(const QString& error);
    void setSaveError(const QString& error);
    void put(const QString& key, const QVariant& value);
    void scheduleTurn();
    void turn();

    const QByteArray m_path;
    Log& m_log;
    FileWatch m_watch;
    QTimer m_absence;
    QTimer m_retry;
    int m_retryMilliseconds = firstRetryMilliseconds;

    Values m_values; // in force
    QMap<QString, quint64> m_unsaved; // set here and not known to be on the disk, with the number of the change
    Values m_former; // of the keys that changed in this turn, what they were when last told
    QString m_saveError;
    bool m_turnScheduled = false;
    bool m_writeNeeded = false;
    bool m_watchFailureTold = false;
    PreferenceDisk m_disk; // the last: its queue tells this of outcomes
};

} // namespace kestro
