#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Notes/NotesStorage.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class Log;

/// The note: loaded when it is first shown, saved one second after the last edit. Main thread; file access happens on
/// the serial queue.
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
    /// The beginning of the note, for the card.
    QString preview() const;
    bool isLoaded() const { return m_loaded; }
    /// Why the last load failed; empty if it succeeded.
    const QString& error() const { return m_error; }
    /// Why the last save failed; empty if it succeeded.
    const QString& saveError() const { return m_saveError; }

    /// Loads the note once. A later call retries a failed load, or a failed save.
    void load();
    /// Sets the text, cut to NotesStorage::maxLength. Does nothing before the note is loaded, since saving would
    /// overwrite it.
    void edit(const QString& text);
    /// Saves pending edits, and blocks until all saves have succeeded or failed.
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
    int m_cursorPosition = 0; // restored when the window opens again
    quint64 m_edition = 0; // counts the edits, to recognise a stale save result
    WorkItem m_saveWork;
    SerialQueue m_io{ "kestro.notes-io" }; // last member: destroyed before the members that its work refers to
};

} // namespace kestro
