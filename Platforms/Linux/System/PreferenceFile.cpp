#include "PreferenceFile.h"

#include "PreferenceDraft.h"
#include "PreferenceValue.h"

#include "Kestro/Platform/Log.h"

#include <QFile>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace kestro {
namespace {

// Some editors rename the old file away before they write the new one.
constexpr int absenceMilliseconds = 1000;
constexpr int longestRetryMilliseconds = 60'000;

QString failureLine(const QString& sentence) { return QStringLiteral("Kestro: the preferences: %1").arg(sentence); }

} // namespace

PreferenceFile::PreferenceFile(const QString& path, Log& log)
    : m_path(QFile::encodeName(path))
    , m_log(log)
    , m_disk(m_path, [this] { QMetaObject::invokeMethod(this, &PreferenceFile::takeOutcomes, Qt::QueuedConnection); })
{
    m_absence.setSingleShot(true);
    m_absence.setInterval(absenceMilliseconds);
    connect(&m_absence, &QTimer::timeout, this, [this] { m_disk.readAbsence(); });
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] { m_disk.write(); });
    connect(&m_watch, &FileWatch::touched, this, &PreferenceFile::look);

    watch(); // before reading: what changes in between is seen
    const auto outcome = m_disk.readAtStart();
    m_values = outcome.found.value_or(Values());
    for (const QString& line : outcome.log)
        m_log.write(line);
    if (!outcome.readError.isEmpty())
        m_log.write(failureLine(outcome.readError));
}

PreferenceFile::~PreferenceFile() { flush(); }

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
    // The value in force is the value that will be read back, to the last bit.
    const QVariant stored = PreferenceValue::fromJson(*json);
    if (PreferenceValue::same(m_values.value(key), stored))
        return;
    m_unsaved.insert(key, m_disk.set(key, stored));
    m_writeNeeded = true;
    put(key, stored);
}

void PreferenceFile::flush()
{
    m_writeNeeded = false;
    if (!m_unsaved.isEmpty())
        m_disk.flush();
    takeOutcomes();
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

// Told before it is saved: what the change sets off is written with it.
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
    if (std::exchange(m_writeNeeded, false))
        m_disk.write();
}

void PreferenceFile::look()
{
    watch();
    m_disk.read();
}

void PreferenceFile::takeOutcomes()
{
    for (const auto& outcome : m_disk.take())
        take(outcome);
}

void PreferenceFile::take(const PreferenceDisk::Outcome& outcome)
{
    for (const QString& line : outcome.log)
        m_log.write(line);
    if (!outcome.isAbsent)
        m_absence.stop();
    else if (!m_absence.isActive())
        m_absence.start();
    if (outcome.found)
        adopt(*outcome.found);
    if (outcome.saved > 0)
        noteSaved(outcome.saved);
    if (!outcome.writeError.isEmpty())
        noteFailure(outcome.writeError);
}

void PreferenceFile::noteSaved(quint64 number)
{
    m_unsaved.removeIf([&](const auto& change) { return change.value() <= number; });
    m_retry.stop();
    m_retryMilliseconds = firstRetryMilliseconds;
    setSaveError({});
    watch();
}

void PreferenceFile::noteFailure(const QString& error)
{
    if (error != m_saveError)
        m_log.write(failureLine(error));
    setSaveError(error);
    if (m_retry.isActive())
        return;
    m_retry.start(m_retryMilliseconds);
    m_retryMilliseconds = std::min(2 * m_retryMilliseconds, longestRetryMilliseconds);
}

void PreferenceFile::setSaveError(const QString& error)
{
    if (std::exchange(m_saveError, error) != error)
        Q_EMIT saveErrorChanged();
}

// Values that were set here and are not saved yet win over the file's.
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

} // namespace kestro
