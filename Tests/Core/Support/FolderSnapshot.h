#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <map>
#include <ostream>
#include <sys/stat.h>

namespace kestro::tests {

/// All that can be seen of one file without following it.
struct FileState {
    QByteArray bytes; // of a link: where it leads
    unsigned mode;
    bool operator==(const FileState&) const = default;
};

/// A folder's entries by name, hidden ones too.
using FolderState = std::map<QByteArray, FileState>;

inline void PrintTo(const FileState& state, std::ostream* out)
{
    *out << std::oct << state.mode << std::dec << " \"" << state.bytes.left(200).toStdString() << '"';
}

inline FolderState snapshot(const QString& folder)
{
    FolderState state;
    const auto names = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const QByteArray path = QFile::encodeName(folder + QLatin1Char('/') + name);
        struct stat info { };
        lstat(path.constData(), &info);
        QFile file(QFile::decodeName(path));
        const bool plain = S_ISREG(info.st_mode) && file.open(QIODevice::ReadOnly);
        state[QFile::encodeName(name)] = { plain ? file.readAll() : QFile::encodeName(file.symLinkTarget()),
            info.st_mode & 07777 };
    }
    return state;
}

inline void writeFile(const QString& path, const QByteArray& bytes, mode_t mode = 0640)
{
    QFile::remove(path); // one that was left read-only
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("no file %s", qUtf8Printable(path));
    file.close();
    chmod(QFile::encodeName(path).constData(), mode);
}

inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}

} // namespace kestro::tests
