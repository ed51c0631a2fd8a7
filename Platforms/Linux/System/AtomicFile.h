#pragma once

#include <QByteArray>
#include <QString>

/// Whole files, read and written so that another program never sees a half. Failures are told in plain words.
namespace kestro::AtomicFile {

inline constexpr qint64 largest = 64 << 20; ///< bytes; what is larger is none of ours

/// Which state of which file is at a path; all zero where there is none.
struct Fingerprint {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 changed = 0; ///< nanoseconds

    bool operator==(const Fingerprint&) const = default;
};
Fingerprint fingerprint(const QByteArray& path);

/// What is at a path: `content`, or an `error`, or nothing (`exists` is false).
struct Reading {
    QByteArray content;
    QString error;
    bool exists = false;
    Fingerprint fingerprint; ///< taken before the content was read
};
Reading read(const QByteArray& path);

/// The next content of the file at `path`, mode 0600, already on the disk and not yet in the file's place.
/// `path` is taken as it is: a link there would be replaced. A draft that is not committed leaves nothing behind.
class Draft {
public:
    Draft(const QByteArray& path, const QByteArray& content);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const QString& error() const { return m_error; }
    /// Returns the error, empty when it went well.
    QString commit();

private:
    QByteArray m_path;
    QByteArray m_temporary;
    QString m_error;
};

/// Draft and commit in one.
QString write(const QByteArray& path, const QByteArray& content);

/// Creates the folder, mode 0700, with the ones above it. Returns the error.
QString createFolder(const QString& path);

/// Where writing to `path` ends: links are followed, also to where nothing is yet.
QByteArray resolved(const QByteArray& path);

/// What `errno` says, in words.
QString systemError();

} // namespace kestro::AtomicFile
