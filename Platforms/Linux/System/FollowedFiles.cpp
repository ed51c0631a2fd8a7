#include "FollowedFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <algorithm>
#include <sys/stat.h>

namespace kestro {
namespace {

// The path itself, or the nearest ancestor of it that a watched folder can tell the coming of.
QByteArray watchablePath(const QString& path)
{
    QFileInfo at(path);
    while (!at.isRoot() && !QFileInfo(at.path()).isDir())
        at.setFile(at.path());
    return QFile::encodeName(at.filePath());
}

} // namespace

FollowedFiles::FollowedFiles() { connect(&m_watch, &FileWatch::touched, this, &FollowedFiles::checkLater); }

FollowedFiles::Stamp FollowedFiles::stampOf(const QString& path)
{
    struct stat file = {};
    if (::stat(QFile::encodeName(path).constData(), &file) != 0)
        return {};
    return { qint64(file.st_dev), qint64(file.st_ino), file.st_size, file.st_mtim.tv_sec, file.st_mtim.tv_nsec,
        file.st_ctim.tv_sec, file.st_ctim.tv_nsec };
}

void FollowedFiles::follow(const QString& path)
{
    if (!path.startsWith(u'/') || m_files.contains(path))
        return;
    m_files.insert(path, stampOf(path));
    checkLater();
}

void FollowedFiles::checkLater()
{
    if (m_checkPosted)
        return;
    m_checkPosted = true;
    QMetaObject::invokeMethod(this, &FollowedFiles::check, Qt::QueuedConnection);
}

// Watches first and compares then: a change before the watch shows in the stamps, a later one touches the watch.
void FollowedFiles::check()
{
    m_checkPosted = false;
    QList<QByteArray> watched;
    for (auto file = m_files.cbegin(); file != m_files.cend(); ++file) {
        watched.append(watchablePath(file.key()));
        const QString target = QFileInfo(file.key()).canonicalFilePath();
        if (!target.isEmpty() && target != file.key())
            watched.append(QFile::encodeName(target));
    }
    m_watch.watch(watched);
    const bool different = std::any_of(m_files.constKeyValueBegin(), m_files.constKeyValueEnd(),
        [](const auto& file) { return stampOf(file.first) != file.second; });
    if (!different)
        return;
    m_files.clear();
    Q_EMIT changed();
}

} // namespace kestro
