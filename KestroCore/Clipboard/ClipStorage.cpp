#include "KestroCore/Clipboard/ClipStorage.h"

#include "KestroCore/Support/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace kestro {

namespace {

constexpr qint64 largestDocument = 384LL << 20; // bytes; what we write ourselves stays below
constexpr auto privateFile = AtomicFile::Attributes{ 0600 };

void makePrivateFolder(const QString& path)
{
    AtomicFile::createFolder(QFile::encodeName(path));
    constexpr auto userAlone = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if ((QFileInfo(path).permissions()
            & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther
                | QFile::ExeOther))
        != 0)
        QFile::setPermissions(path, userAlone);
}

QString imagesFolder(const QString& dir) { return dir + QStringLiteral("/images"); }

void removeOrphans(const QString& folder, const ClipHistory& history)
{
    QSet<QString> wanted;
    for (const ClipEntry& entry : history.entries()) {
        if (const auto name = entry.imageFileName())
            wanted.insert(*name);
    }
    const auto files = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : files) {
        if (!wanted.contains(name))
            QFile::remove(folder + u'/' + name);
    }
}

} // namespace

QString ClipStorage::defaultDir(const QString& home)
{
    return home + QStringLiteral("/Library/Application Support/Kestro/clipboard");
}

QString ClipStorage::historyPath() const { return dir + QStringLiteral("/history.json"); }

QString ClipStorage::imagePath(const QString& name) const { return imagesFolder(dir) + u'/' + name; }

ClipHistory ClipStorage::load() const
{
    const QString path = historyPath();
    const QFileInfo file(path);
    ClipHistory history;
    if (file.exists()) {
        const bool isTooLarge = file.isFile() && file.size() > largestDocument;
        std::optional<QList<ClipEntry>> entries;
        if (!isTooLarge) {
            const auto contents = AtomicFile::read(QFile::encodeName(path), largestDocument);
            entries = ClipCoding::decode(contents ? contents->bytes : QByteArray(R"({"entries":[]})"));
        }
        if (!entries) {
            const QString aside = dir + QStringLiteral("/history.corrupt.json");
            QFile::remove(aside);
            QFile::rename(path, aside);
            return {};
        }
        entries->removeIf([this](const ClipEntry& entry) {
            const auto name = entry.imageFileName();
            return name && !(ClipCoding::isFileName(*name) && QFile::exists(imagePath(*name)));
        });
        history = ClipHistory(std::move(*entries));
    }
    removeOrphans(imagesFolder(dir), history);
    return history;
}

void ClipStorage::save(const ClipHistory& history) const
{
    makePrivateFolder(dir);
    AtomicFile::replace(QFile::encodeName(historyPath()), ClipCoding::encode(history.entries()), privateFile);
}

void ClipStorage::writeImage(const QByteArray& data, const QString& name) const
{
    makePrivateFolder(dir);
    makePrivateFolder(imagesFolder(dir));
    AtomicFile::replace(QFile::encodeName(imagePath(name)), data, privateFile);
}

void ClipStorage::deleteImages(const QStringList& names) const
{
    for (const QString& name : names) {
        if (ClipCoding::isFileName(name))
            QFile::remove(imagePath(name));
    }
}

void ClipStorage::clear() const
{
    QFile::remove(historyPath());
    QDir(imagesFolder(dir)).removeRecursively();
}

} // namespace kestro
