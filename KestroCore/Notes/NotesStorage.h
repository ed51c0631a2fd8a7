#pragma once

#include <QString>

namespace kestro {

/// The file of the note: plain UTF-8. Both operations block on the disk and work from any thread.
struct NotesStorage {
    static constexpr qsizetype maxLength = 100000; ///< characters as a user counts them

    QString path;

    /// Where the note lies under `home`.
    static NotesStorage under(const QString& home);
    /// Where a file goes that is not UTF-8.
    QString corruptPath() const;

    /// The note, at most `maxLength` characters of it; empty where there is no file. A file that is not UTF-8 is moved
    /// to `corruptPath`, in the place of one that was moved there earlier, and the note is empty. Throws StorageError
    /// where the file cannot be read or moved, and leaves it as it is.
    QString load() const;
    /// Replaces the file at once, for the user alone, and creates its folder. Throws StorageError.
    void save(const QString& text) const;

    /// How many characters `text` has.
    static qsizetype length(const QString& text);
    /// The first `length` of them.
    static QString capped(const QString& text, qsizetype length = maxLength);
};

} // namespace kestro
