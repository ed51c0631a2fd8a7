#include "PreferenceFile.h"

#include "PreferenceDraft.h"
#include "PreferenceValue.h"
#include "PrivateFolder.h"

#include "Kestro/Platform/Log.h"
#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/PosixError.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace kestro {
namespace {

// Some editors rename the old file away before they write the new one.
constexpr int absenceMilliseconds = 1000;

QByteArray corruptName(const QByteArray& path)
{
    constexpr QByteArrayView suffix = ".json";
    return (path.endsWith(suffix) ? path.chopped(suffix.size()) : path) + ".corrupt.json";
}

QByteArray folderOf(const QByteArray& path) { return path.left(path.lastIndexOf('/')); }

QString failureLine(const QString& sentence) { return QStringLiteral("Kestro: the preferences: %1").arg(sentence); }

} // namespace

PreferenceFile::PreferenceFile(const QString& path, Log& log)
    : m_path(QFile::encodeName(path))
    , m_corruptPath(corruptName(m_path))
    , m_log(log)
{
    m_absence.setSingleShot(true);
    m_absence.setInterval(absenceMilliseconds);
    connect(&m_absence, &QTimer::timeout, this, &PreferenceFile::believeAbsence);
    connect(&m_watch, &FileWatch::touched, this, &PreferenceFile::look);

    createPrivateFolder(folderOf(m_path)); // a failure is told when something is to be saved
    watch(); // before reading: what changes in between is seen
    readAtStart();
}

PreferenceFile::~PreferenceFile() { flush(); }

void PreferenceFile::readAtStart()
{
    const auto reading = PreferenceReading::of(m_path);
    if (!reading.error.isEmpty()) {
        m_log.write(failureLine(reading.error));
        return;
    }
    if (!reading.exists)
        return;
    if (const auto document = PreferenceDocument::parse(reading.content)) {
        m_content = reading.content;
        m_values = document->values();
        return;
    }
    const QString error = setAside(resolved(m_path), reading.content);
    if (!error.isEmpty())
        m_log.write(failureLine(error));
}

// Through a link two places are watched: the link's, where it may be pointed elsewhere, and the file's own.
void PreferenceFile::watch()
{
    QList<QByteArray> paths{ m_path };
    const QByteArray target = resolved(m_path);
    if (target != m_path)
        paths.append(target);
    const QString error = m_watch.watch(paths);
    if (!error.isEmpty() && !std::exchange(m_watchFailureTold, true))
        m_log.write(QStringLiteral("Kestro: couldn't watch the preferences: %1").arg(error));
}

void PreferenceFile::setValue(const QString& key, const QVariant& value)
{
    const auto json = PreferenceValue::toJson(value);
    if (!json) {
        m_log.write(QStringLiteral("Kestro: the preference %1 has a value that can't be stored").arg(key));
        return;
    }
    // What is in force is what will be read back, to the last bit.
    const QVariant stored = PreferenceValue::fromJson(*json);
    if (PreferenceValue::same(m_values.value(key), stored))
        return;
    m_unsaved.insert(key, stored);
    put(key, stored);
}

void PreferenceFile::flush()
{
    if (!m_unsaved.isEmpty())
        save();
}

void PreferenceFile::put(const QString& key, const QVariant& value)
{
    const QVariant before = m_values.value(key);
    if (PreferenceValue::same(before, value))
        return;
    if (!m_former.contains(key))
        m_former.insert(key, before);
    if (value.isValid())
        m_values.insert(key, value);
    else
        m_values.remove(key);
    scheduleTurn();
}

void PreferenceFile::scheduleTurn()
{
    if (!std::exchange(m_turnScheduled, true))
        QMetaObject::invokeMethod(this, &PreferenceFile::turn, Qt::QueuedConnection);
}

// Told before it is saved: what the change sets off shows without waiting for the disk, and what it writes is saved
// with it.
void PreferenceFile::turn()
{
    m_turnScheduled = false;
    QStringList keys;
    const Values former = std::exchange(m_former, {});
    for (auto it = former.begin(); it != former.end(); ++it) {
        if (!PreferenceValue::same(it.value(), m_values.value(it.key())))
            keys.append(it.key());
    }
    keys.sort();
    if (!keys.isEmpty())
        Q_EMIT changed(keys);
    flush();
}

void PreferenceFile::look()
{
    watch();
    takeOver(PreferenceReading::of(m_path));
}

void PreferenceFile::takeOver(const PreferenceReading& reading)
{
    if (!reading.exists) {
        if (!m_content.isEmpty() && !m_absence.isActive())
            m_absence.start();
        return;
    }
    m_absence.stop();
    if (!reading.error.isEmpty() || reading.content == m_content)
        return;
    if (const auto document = PreferenceDocument::parse(reading.content)) {
        m_content = reading.content;
        adopt(document->values());
    }
}

void PreferenceFile::believeAbsence()
{
    if (PreferenceReading::of(m_path).exists)
        return;
    m_content.clear();
    adopt({});
}

// What was set here and is not saved yet stands above what the file says.
void PreferenceFile::adopt(const Values& inFile)
{
    for (auto it = inFile.begin(); it != inFile.end(); ++it) {
        if (!m_unsaved.contains(it.key()))
            put(it.key(), it.value());
    }
    const QStringList keys = m_values.keys();
    for (const QString& key : keys) {
        if (!m_unsaved.contains(key) && !inFile.contains(key))
            put(key, {});
    }
}

void PreferenceFile::save()
{
    const QString failure = trySave();
    if (!failure.isEmpty() && failure != m_lastFailure)
        m_log.write(failureLine(failure));
    m_lastFailure = failure;
}

QString PreferenceFile::trySave()
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
        takeOver(reading);

        // Where there is no file, or a broken one, its last good text is what the others wrote.
        const bool parsed = reading.exists && reading.content == m_content;
        if (reading.exists && !parsed)
            error = setAside(target, reading.content);
        auto document = PreferenceDocument::parse(m_content).value_or(PreferenceDocument());
        bool differs = !parsed;
        for (auto it = m_unsaved.begin(); it != m_unsaved.end(); ++it)
            differs = document.set(it.key(), it.value()) || differs;

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
        if (error.isEmpty()) {
            m_unsaved.clear();
            watch();
            return {};
        }
    }
    return error;
}

QString PreferenceFile::setAside(const QByteArray& target, const QByteArray& content)
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
    m_log.write(QStringLiteral("Kestro: the preferences didn't parse; kept them as %1")
                    .arg(QFile::decodeName(m_corruptPath.mid(m_corruptPath.lastIndexOf('/') + 1))));
    return {};
}

} // namespace kestro
