#include "Kestro/Notes/NotesModel.h"

#include "Kestro/Platform/Log.h"
#include "KestroCore/Support/StorageError.h"

#include <QPointer>

namespace kestro {

namespace {

constexpr double saveDelay = 1; // seconds after the last change
constexpr qsizetype previewLength = 1000; // characters: more than a card has room for

} // namespace

NotesModel::NotesModel(MainLoop& loop, Log& log, NotesStorage storage)
    : m_loop(loop)
    , m_log(log)
    , m_storage(std::move(storage))
{
}

NotesModel::~NotesModel() { flush(); }

QString NotesModel::preview() const { return NotesStorage::capped(m_text.left(4 * previewLength), previewLength); }

void NotesModel::load()
{
    if (m_loaded && !m_saveError.isEmpty() && !m_saveWork)
        save();
    if (m_loaded || m_loading)
        return;
    m_loading = true;
    m_io.async([storage = m_storage, &loop = m_loop, self = QPointer(this)] {
        Result result;
        try {
            result.text = storage.load();
        } catch (const StorageError& error) {
            result.failure = error.description();
        }
        loop.post([self, result] {
            if (self)
                self->didLoad(result);
        });
    });
}

void NotesModel::didLoad(const Result& result)
{
    m_loading = false;
    if (result.failure.isEmpty()) {
        m_text = result.text;
        m_loaded = true;
        m_error.clear();
        Q_EMIT textChanged();
    } else {
        m_log.write(QStringLiteral("Kestro: couldn't read the notes: %1").arg(result.failure));
        QString reason = result.failure;
        if (reason.endsWith(u'.')) // the full stop of an inner sentence
            reason.chop(1);
        m_error = QStringLiteral("Couldn't read notes.txt (%1). It was left as it is.").arg(reason);
    }
    Q_EMIT stateChanged();
}

void NotesModel::edit(const QString& text)
{
    if (!m_loaded || text == m_text)
        return;
    m_text = NotesStorage::capped(text);
    ++m_edition;
    m_saveWork = m_loop.after(saveDelay, [this] { save(); });
    Q_EMIT textChanged();
}

void NotesModel::save()
{
    m_saveWork.cancel();
    m_io.async([storage = m_storage, text = m_text, edition = m_edition, &loop = m_loop, self = QPointer(this)] {
        QString failure;
        try {
            storage.save(text);
        } catch (const StorageError& error) {
            failure = error.description();
        }
        loop.post([self, edition, failure] {
            if (self)
                self->didSave(edition, failure);
        });
    });
}

void NotesModel::didSave(quint64 edition, const QString& failure)
{
    if (!failure.isEmpty())
        m_log.write(QStringLiteral("Kestro: couldn't save the notes: %1").arg(failure));
    if (edition != m_edition || failure == m_saveError)
        return;
    m_saveError = failure;
    Q_EMIT stateChanged();
}

void NotesModel::flush()
{
    if (m_saveWork || !m_saveError.isEmpty())
        save();
    m_io.drain();
}

} // namespace kestro
