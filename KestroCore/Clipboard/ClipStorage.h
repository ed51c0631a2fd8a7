#pragma once

#include "KestroCore/Clipboard/ClipHistory.h"
#include "KestroCore/Support/StorageError.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QUuid>

namespace kestro {

/// The further formats in which a text was copied, by type: its layout beside its letters.
using ClipFormats = QMap<QString, QByteArray>;

/// The history's folder: one JSON document, one file an image, and one for a text with further formats, readable for
/// the user alone. Each call blocks on the disk; calls for one folder come one after the other.
struct ClipStorage {
    QString dir;

    /// "Library/Application Support/Kestro/clipboard" under `home`.
    static QString defaultDir(const QString& home);

    /// The history, without the images whose files are gone; files that belong to no entry are removed. A document that
    /// cannot be read as one is set aside as "history.corrupt.json", and the images with it stay.
    /// Throws StorageError where the file is there and cannot be read.
    ClipHistory load() const;
    /// Throws StorageError.
    void save(const ClipHistory& history) const;
    /// Throws StorageError.
    void writeImage(const QByteArray& data, const QString& name) const;
    /// Names of files that are not there, or that lead out of the folder, are passed over.
    void deleteImages(const QStringList& names) const;
    /// Replaces those of the entry; an empty map removes them. Throws StorageError.
    void writeFormats(const QUuid& id, const ClipFormats& formats) const;
    /// Empty where there are none, or where they cannot be read.
    ClipFormats formats(const QUuid& id) const;
    /// Removes the formats of all entries but these.
    void keepFormats(const QList<QUuid>& ids) const;
    /// Removes all but what was set aside.
    void clear() const;

    QString historyPath() const;
    QString imagePath(const QString& name) const;
    QString formatsPath(const QUuid& id) const;
};

/// The document, read and written. Pure functions, from any thread.
namespace ClipCoding {

QByteArray encode(const QList<ClipEntry>& entries);
/// The entries as they stand in it, or nothing where one of them is broken.
std::optional<QList<ClipEntry>> decode(QByteArrayView document);

/// Whether it names a file in the folder of images and none elsewhere.
bool isFileName(const QString& name);

} // namespace ClipCoding

} // namespace kestro
