#pragma once

#include "KestroCore/Support/SerialQueue.h"
#include "PreferenceDocument.h"

#include <QByteArray>
#include <QStringList>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace kestro {

struct PreferenceReading;

/// Reads and writes the preference file on a queue, in the order in which it is asked, so that no caller waits for the
/// disk. Readings and results of writes are outcomes, to be taken in their order.
class PreferenceDisk {
public:
    using Values = PreferenceDocument::Values;

    struct Outcome {
        bool isAbsent = false; ///< there is no file where there was one
        std::optional<Values> found{}; ///< the values of a file that another program wrote, if it parses
        quint64 saved = 0; ///< the changes up to this number are on the disk
        QString readError{};
        QString writeError{}; ///< of a write: why nothing was saved
        QStringList log{};
    };

    /// Creates the file's folder. `told` is called on the queue when there are outcomes to take.
    PreferenceDisk(const QByteArray& path, std::function<void()> told);

    /// On the calling thread, before anything else: a file that does not parse is set aside.
    Outcome readAtStart();

    /// Notes a change for the next write, an invalid value for a removal; the numbers grow. From any thread.
    quint64 set(const QString& key, const QVariant& value);
    /// Writes what has been noted, on the queue.
    void write();
    /// Looks what another program has written, on the queue.
    void read();
    /// The same, but a file that is absent holds no values from now on.
    void readAbsence();
    /// Writes what has been noted and waits for that. Returns whether all is saved. From any thread but the queue.
    bool flush();

    /// The outcomes since the last call. From any thread.
    std::vector<Outcome> take();

private:
    struct Change {
        QVariant value;
        quint64 number = 0;
    };
    using Changes = QMap<QString, Change>;

    Changes unsaved() const;
    void tell(Outcome outcome);
    void save();
    void takeOver(const PreferenceReading& reading, Outcome& outcome);
    QString trySave(const Changes& changes, Outcome& outcome);
    QString setAside(const QByteArray& target, const QByteArray& content, Outcome& outcome);

    const QByteArray m_path;
    const QByteArray m_corruptPath;
    const std::function<void()> m_told;
    QByteArray m_content; // of the file when it last parsed: what we wrote ourselves is known by it. The queue's
    mutable std::mutex m_mutex; // of what follows
    Changes m_unsaved;
    quint64 m_lastNumber = 0;
    std::vector<Outcome> m_outcomes;
    SerialQueue m_queue{ "kestro.preferences" }; // below what it uses: it ends first
};

} // namespace kestro
