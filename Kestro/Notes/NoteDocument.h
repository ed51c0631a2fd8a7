#pragma once

#include "Kestro/Notes/NotesModel.h"

#include <QObject>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

namespace kestro {

/// Connects an editor's document to the note. The document may be longer than the note: cutting it would add a step to
/// the undo history, and undoing that step would exceed the limit again. Main thread.
class NoteDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(kestro::NotesModel* notes MEMBER m_notes FINAL)
    Q_PROPERTY(QQuickTextDocument* document MEMBER m_document FINAL)
    Q_PROPERTY(bool full READ isFull NOTIFY fullChanged FINAL)
public:
    using QObject::QObject;

    /// Whether the last edit or paste exceeded the note's length.
    bool isFull() const { return m_full; }

    /// Passes the document's text to the note.
    Q_INVOKABLE void changed();
    /// Replaces the range by the clipboard's text, cut to the room that is left. Returns false if the clipboard has no
    /// text. TextEdit's own paste would lay out the whole text first, which takes seconds for 5 MB.
    Q_INVOKABLE bool paste(int from, int to);

Q_SIGNALS:
    void fullChanged();

private:
    QString text() const;
    void setFull(bool full);

    NotesModel* m_notes = nullptr;
    QQuickTextDocument* m_document = nullptr;
    bool m_full = false;
};

} // namespace kestro
