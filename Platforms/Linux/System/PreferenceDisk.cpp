#include "PreferenceDisk.h"

#include "PreferenceDraft.h"
#include "PrivateFolder.h"

#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/PosixError.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kestro {
namespace {

QByteArray corruptName(const QByteArray& path)
{
    constexpr QByteArrayView suffix = ".json";
    return (path.endsWith(suffix) ? path.chopped(suffix.size()) : path) + ".corrupt.json";
}

QByteArray folderOf(const QByteArray& path) { return path.left(path.lastIndexOf('/')); }

} // namespace

PreferenceDisk::PreferenceDisk(const QByteArray& path, std::function<void()> told)
    : m_path(path)
    , m_corruptPath(corruptName(path))
    , m_told(std::move(told))
{
    createPrivateFolder(folderOf(m_path)); // a failure is told when something is to be saved
}

PreferenceDisk::Outcome PreferenceDisk::readAtStart()
{
    Outcome outcome;
    const auto reading = PreferenceReading::of(m_path);
    outcome.readError = reading.error;
    if (!reading.exists || !reading.error.isEmpty())
        return outcome;
    takeOver(reading, outcome);
    if (!outcome.found)
        outcome.readError = setAside(resolved(m_path), reading.content, outcome);
    return outcome;
}

quint64 PreferenceDisk::set(const QString& key, const QVariant& value)
{
    const std::lock_guard lock(m_mutex);
    m_unsaved.insert(key, { value, ++m_lastNumber });
    return m_lastNumber;
}

void PreferenceDisk::write()
{
    m_queue.async([this] { save(); });
}

void PreferenceDisk::read()
{
    m_queue.async([this] {
        Outcome outcome;
        takeOver(PreferenceReading::of(m_path), outcome);
        tell(std::move(outcome));
    });
}

void PreferenceDisk::readAbsence()
{
    m_queue.async([this] {
        if (PreferenceReading::of(m_path).exists)
            return;
        m_content.clear();
        tell({ .found = Values() });
    });
}

bool PreferenceDisk::flush()
{
    write();
    m_queue.drain();
    return unsaved().isEmpty();
}

std::vector<PreferenceDisk::Outcome> PreferenceDisk::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_outcomes, {});
}

PreferenceDisk::Changes PreferenceDisk::unsaved() const
{
    const std::lock_guard lock(m_mutex);
    return m_unsaved;
}

void PreferenceDisk::tell(Outcome outcome)
{
    {
        const std::lock_guard lock(m_mutex);
        m_outcomes.push_back(std::move(outcome));
    }
    m_told();
}

void PreferenceDisk::takeOver(const PreferenceReading& reading, Outcome& outcome)
{
    outcome.isAbsent = !reading.exists && !m_content.isEmpty();
    if (!reading.exists || !reading.error.isEmpty() || reading.content == m_content)
        return;
    if (const auto document = PreferenceDocument::parse(reading.content)) {
        m_content = reading.content;
        outcome.found = document->values();
    }
}

void PreferenceDisk::save()
{
    const Changes changes = unsaved();
    if (changes.isEmpty())
        return;
    Outcome outcome;
    outcome.writeError = trySave(changes, outcome);
    if (outcome.writeError.isEmpty()) {
        for (const Change& change : changes)
            outcome.saved = std::max(outcome.saved, change.number);
        // Keys that were set again meanwhile are still to be written.
        const std::lock_guard lock(m_mutex);
        m_unsaved.removeIf([&](const auto& change) { return change.value().number <= outcome.saved; });
    }
    tell(std::move(outcome));
}

QString PreferenceDisk::trySave(const Changes& changes, Outcome& outcome)
{
    QString error;
    if (!createPrivateFolder(folderOf(m_path)))
        error = PosixError::creatingFolder(folderOf(m_path), errno).description();
    constexpr int attempts = 4;
    for (int attempt = 1; error.isEmpty(); ++attempt) {
        const QByteArray target = resolved(m_path);
        const auto reading = PreferenceReading::of(target);
        if (!reading.error.isEmpty())
            return reading.error;
        takeOver(reading, outcome);

        // Where there is no file, or a broken one, its last good text is what the others wrote.
        const bool parsed = reading.exists && reading.content == m_content;
        if (reading.exists && !parsed)
            error = setAside(target, reading.content, outcome);
        auto document = PreferenceDocument::parse(m_content).value_or(PreferenceDocument());
        bool differs = !parsed;
        for (auto it = changes.begin(); it != changes.end(); ++it)
            differs = document.set(it.key(), it.value().value) || differs;

        if (error.isEmpty() && differs) {
            const QByteArray content = document.text();
            PreferenceDraft draft(target, content);
            // Bringing the draft to the disk takes long enough for another program to write.
            const auto expected = parsed ? reading.fingerprint : FileFingerprint();
            if (FileFingerprint::of(target) != expected && attempt < attempts)
                continue;
            error = draft.commit();
            if (error.isEmpty())
                m_content = content;
        }
        if (error.isEmpty())
            return {};
    }
    return error;
}

QString PreferenceDisk::setAside(const QByteArray& target, const QByteArray& content, Outcome& outcome)
{
    const auto failed = [&] { return PosixError::saving(m_corruptPath, errno).description(); };
    if (target == m_path) {
        ::chmod(m_path.constData(), 0600);
        if (::rename(m_path.constData(), m_corruptPath.constData()) != 0)
            return failed();
    } else { // a link stays a link
        try {
            AtomicFile::replace(m_corruptPath, content, AtomicFile::Attributes());
        } catch (const StorageError& error) {
            return error.description();
        }
        if (::unlink(target.constData()) != 0)
            return failed();
    }
    outcome.log.append(QStringLiteral("Kestro: the preferences didn't parse; kept them as %1")
                           .arg(QFile::decodeName(m_corruptPath.mid(m_corruptPath.lastIndexOf('/') + 1))));
    return {};
}

} // namespace kestro
