#pragma once

#include "Kestro/Notes/NotesModel.h"

#include <QObject>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

namespace kestro {

/// Hands on what is typed in an editor to the note. An editor may hold more than the note does: text is not taken away
/// while it is written, since undoing would bring it back. Main thread.
class NoteDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(kestro::NotesModel* notes MEMBER m_notes FINAL)
    Q_PROPERTY(QQuickTextDocument* document MEMBER m_document FINAL)
    Q_PROPERTY(bool full READ isFull NOTIFY fullChanged FINAL)
public:
    using QObject::QObject;

    /// Whether the last change left text in the editor, or in the clipboard, for which the note has no room.
    bool isFull() const { return m_full; }

    Q_INVOKABLE void changed();
    /// Puts as much of the clipboard's text as there is room for in the place of what is between the two; false where
    /// it has no text. An editor's own way would lay out megabytes, which takes seconds.
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
