#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Notes/NotesStorage.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class Log;

/// The note: read when it is first shown, saved a second after the last change. Main thread; files are touched on a
/// queue of its own.
class NotesModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the notes' widget")
    Q_PROPERTY(QString text READ text NOTIFY textChanged FINAL)
    Q_PROPERTY(QString preview READ preview NOTIFY textChanged FINAL)
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY stateChanged FINAL)
    Q_PROPERTY(QString error READ error NOTIFY stateChanged FINAL)
    Q_PROPERTY(QString saveError READ saveError NOTIFY stateChanged FINAL)
    Q_PROPERTY(int cursorPosition MEMBER m_cursorPosition NOTIFY cursorPositionChanged FINAL)
public:
    /// `loop` and `log` must outlive it.
    NotesModel(MainLoop& loop, Log& log, NotesStorage storage);
    ~NotesModel() override;

    const QString& text() const { return m_text; }
    /// The beginning, for where little of it is seen.
    QString preview() const;
    bool isLoaded() const { return m_loaded; }
    /// Why the note could not be read; empty where it could.
    const QString& error() const { return m_error; }
    /// Why the last change is not on the disk; empty where it is or soon will be.
    const QString& saveError() const { return m_saveError; }

    /// Reads the note, if it has not been read. Tries again to save what could not be saved.
    void load();
    /// Takes the first NotesStorage::maxLength characters. Does nothing before the note has been read: it would be
    /// lost.
    void edit(const QString& text);
    /// Blocks until every change is on the disk, or has failed to get there.
    void flush();

Q_SIGNALS:
    void textChanged();
    void stateChanged();
    void cursorPositionChanged();

private:
    struct Result {
        QString text;
        QString failure;
    };
    void didLoad(const Result& result);
    void save();
    void didSave(quint64 edition, const QString& failure);

    MainLoop& m_loop;
    Log& m_log;
    const NotesStorage m_storage;
    QString m_text;
    bool m_loaded = false;
    bool m_loading = false;
    QString m_error;
    QString m_saveError;
    int m_cursorPosition = 0; // where the user left it when the window was closed
    quint64 m_edition = 0; // counts the edits, to know an outdated result of a save
    WorkItem m_saveWork;
    SerialQueue m_io{ "kestro.notes-io" }; // last: it ends before what its work refers to
};

} // namespace kestro
