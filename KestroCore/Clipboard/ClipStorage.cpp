#include "KestroCore/Clipboard/ClipStorage.h"

#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/Uuid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace kestro {

namespace {

constexpr qint64 largestDocument = 384LL << 20; // bytes; what we write ourselves stays below
constexpr qint64 largestFormats = 64LL << 20;
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

QString formatsFolder(const QString& dir) { return dir + QStringLiteral("/formats"); }

QSet<QString> imageNames(const ClipHistory& history)
{
    QSet<QString> names;
    for (const ClipEntry& entry : history.entries()) {
        if (const auto name = entry.imageFileName())
            names.insert(*name);
    }
    return names;
}

QList<QUuid> idsOf(const ClipHistory& history)
{
    QList<QUuid> ids;
    for (const ClipEntry& entry : history.entries())
        ids.append(entry.id);
    return ids;
}

void removeOrphans(const QString& folder, const QSet<QString>& wanted)
{
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

QString ClipStorage::formatsPath(const QUuid& id) const { return formatsFolder(dir) + u'/' + uuidText(id); }

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
    removeOrphans(imagesFolder(dir), imageNames(history));
    keepFormats(idsOf(history));
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

void ClipStorage::writeFormats(const QUuid& id, const ClipFormats& formats) const
{
    if (formats.isEmpty()) {
        QFile::remove(formatsPath(id));
        return;
    }
    QJsonObject object;
    for (auto each = formats.begin(); each != formats.end(); ++each)
        object.insert(each.key(), QString::fromLatin1(each.value().toBase64()));
    makePrivateFolder(dir);
    makePrivateFolder(formatsFolder(dir));
    AtomicFile::replace(
        QFile::encodeName(formatsPath(id)), QJsonDocument(object).toJson(QJsonDocument::Compact), privateFile);
}

ClipFormats ClipStorage::formats(const QUuid& id) const
{
    ClipFormats formats;
    try {
        const auto file = AtomicFile::read(QFile::encodeName(formatsPath(id)), largestFormats);
        const QJsonObject object = QJsonDocument::fromJson(file ? file->bytes : QByteArray()).object();
        for (auto each = object.begin(); each != object.end(); ++each)
            formats.insert(each.key(), QByteArray::fromBase64(each.value().toString().toLatin1()));
    } catch (const StorageError&) { // the text alone is copied back
    }
    return formats;
}

void ClipStorage::keepFormats(const QList<QUuid>& ids) const
{
    QSet<QString> wanted;
    for (const QUuid& id : ids)
        wanted.insert(uuidText(id));
    removeOrphans(formatsFolder(dir), wanted);
}

void ClipStorage::clear() const
{
    QFile::remove(historyPath());
    QDir(formatsFolder(dir)).removeRecursively();
    QDir(imagesFolder(dir)).removeRecursively();
}

} // namespace kestro
