#include "KestroCore/Support/PosixError.h"

#include <QFile>
#include <cerrno>
#include <system_error>

namespace kestro::PosixError {

namespace {

StorageError sentence(const QString& opening, const QByteArray& path, int error)
{
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray folderPath = path.left(slash);
    const QByteArray folder = folderPath.mid(folderPath.lastIndexOf('/') + 1);
    return StorageError(QStringLiteral("Couldn't %1 “%2” in “%3” — %4.")
                            .arg(opening, QFile::decodeName(path.mid(slash + 1)),
                                folder.isEmpty() ? QStringLiteral("/") : QFile::decodeName(folder), reason(error)));
}

} // namespace

QString reason(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return QStringLiteral("you don't have permission");
    case ENOSPC:
        return QStringLiteral("the disk is full");
    case EDQUOT:
        return QStringLiteral("your share of the disk is used up");
    case EFBIG:
        return QStringLiteral("the file is too large");
    case EROFS:
        return QStringLiteral("the disk can only be read");
    case EIO:
        return QStringLiteral("the disk reported an error");
    case ENOENT:
        return QStringLiteral("the folder is missing");
    case ENOTDIR:
    case EEXIST:
        return QStringLiteral("a file stands where a folder should be");
    case EISDIR:
        return QStringLiteral("a folder of that name is in the way");
    case EBUSY:
        return QStringLiteral("the system is using it");
    case ELOOP:
        return QStringLiteral("its symbolic links lead round in a circle");
    case ENAMETOOLONG:
        return QStringLiteral("its name is too long");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("too many files are open");
    case EINVAL:
        return QStringLiteral("it isn't an ordinary file");
    default:
        return QString::fromStdString(std::generic_category().message(error));
    }
}

StorageError saving(const QByteArray& path, int error) { return sentence(QStringLiteral("save"), path, error); }

StorageError reading(const QByteArray& path, int error) { return sentence(QStringLiteral("read"), path, error); }

StorageError creatingFolder(const QByteArray& path, int error)
{
    return sentence(QStringLiteral("create the folder"), path, error);
}

} // namespace kestro::PosixError
