#pragma once

#include <QByteArray>
#include <QString>

namespace kestro {

/// Which state of which file is at a path; all zero where there is none.
struct FileFingerprint {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 changed = 0; ///< nanoseconds

    static FileFingerprint of(const QByteArray& path);
    bool operator==(const FileFingerprint&) const = default;
};

/// The file at a path: `content`, or an `error`, or nothing (`exists` is false).
struct PreferenceReading {
    QByteArray content;
    QString error;
    bool exists = false;
    FileFingerprint fingerprint; ///< taken before the content was read

    static PreferenceReading of(const QByteArray& path);
};

/// The next content of the file at `path`, mode 0600, already on the disk and not yet in the file's place.
/// `path` is taken as it is: a link there would be replaced. A draft that is not committed leaves nothing behind.
class PreferenceDraft {
public:
    PreferenceDraft(const QByteArray& path, const QByteArray& content);
    ~PreferenceDraft();
    PreferenceDraft(const PreferenceDraft&) = delete;
    PreferenceDraft& operator=(const PreferenceDraft&) = delete;

    /// Returns the error, empty when it went well.
    QString commit();

private:
    const QByteArray m_path;
    const QByteArray m_temporary;
    QString m_error;
};

/// Where writing to `path` ends: links are followed, also to where nothing is yet.
QByteArray resolved(const QByteArray& path);

} // namespace kestro
