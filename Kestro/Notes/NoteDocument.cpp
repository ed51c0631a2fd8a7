#include "Kestro/Notes/NoteDocument.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

namespace kestro {

QString NoteDocument::text() const
{
    // QTextDocument::toPlainText would turn no-break spaces into spaces.
    return m_document->textDocument()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

void NoteDocument::changed()
{
    if (!m_notes || !m_document)
        return;
    const QString edited = text();
    m_notes->edit(edited);
    setFull(m_notes->isLoaded() && m_notes->text().size() < edited.size());
}

bool NoteDocument::paste(int from, int to)
{
    const QString copied = QGuiApplication::clipboard()->text();
    if (!m_document || copied.isEmpty())
        return false;
    const qsizetype taken = NotesStorage::length(text().remove(from, to - from));
    const qsizetype room = std::max<qsizetype>(NotesStorage::maxLength - taken, 0);
    const QString fitting = NotesStorage::capped(copied, room);
    QTextCursor cursor(m_document->textDocument());
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    if (!fitting.isEmpty())
        cursor.insertText(fitting);
    setFull(m_full || fitting.size() < copied.size());
    return true;
}

void NoteDocument::setFull(bool full)
{
    if (m_full == full)
        return;
    m_full = full;
    Q_EMIT fullChanged();
}

} // namespace kestro
