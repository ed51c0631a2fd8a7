#include "KestroCore/Notes/NotesStorage.h"

#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/PosixError.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QTextBoundaryFinder>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>

namespace kestro {

namespace {

constexpr qsizetype largestFile = 64 << 20; // bytes; one character may have many code points

std::optional<QString> decoded(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

void createPrivateFolder(const QString& path)
{
    const QFileInfo folder(path);
    if (folder.isDir())
        return;
    AtomicFile::createFolder(QFile::encodeName(folder.path()));
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST)
        throw PosixError::creatingFolder(QFile::encodeName(path), errno);
}

} // namespace

NotesStorage NotesStorage::under(const QString& home)
{
    return { home + QStringLiteral("/Library/Application Support/Kestro/notes.txt") };
}

QString NotesStorage::corruptPath() const
{
    const QFileInfo file(path);
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral(".corrupt.txt");
}

QString NotesStorage::load() const
{
    const QByteArray native = QFile::encodeName(path);
    const auto contents = AtomicFile::read(native, largestFile);
    // A dangling symbolic link (an unmounted disk, say) is an error: a later save would replace the link.
    if (!contents && QFileInfo(path).isSymLink())
        throw PosixError::reading(native, ENOENT);
    if (!contents)
        return {};
    if (const auto text = decoded(contents->bytes))
        return capped(*text);
    const QByteArray aside = QFile::encodeName(corruptPath());
    if (std::rename(native.constData(), aside.constData()) != 0)
        throw PosixError::saving(aside, errno);
    return {};
}

void NotesStorage::save(const QString& text) const
{
    createPrivateFolder(QFileInfo(path).path());
    // The file may be a symbolic link into a synchronised folder: write to its target, since `replace` replaces links.
    const QString target = QFileInfo(path).canonicalFilePath();
    AtomicFile::replace(QFile::encodeName(target.isEmpty() ? path : target), text.toUtf8(), AtomicFile::Attributes{});
}

qsizetype NotesStorage::length(const QString& text)
{
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (characters.toNextBoundary() >= 0)
        ++count;
    return count;
}

QString NotesStorage::capped(const QString& text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype count = 0; count < length; ++count) {
        if (characters.toNextBoundary() < 0)
            return text;
    }
    return text.left(characters.position());
}

} // namespace kestro
