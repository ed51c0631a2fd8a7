#pragma once

#include <QString>

namespace kestro {

/// The file of the note: plain UTF-8. Both operations block on the disk and work from any thread.
struct NotesStorage {
    static constexpr qsizetype maxLength = 100000; ///< characters as a user counts them

    QString path;

    /// Where the note lies under `home`.
    static NotesStorage under(const QString& home);
    /// Where `load` moves a file that is not UTF-8.
    QString corruptPath() const;

    /// The first `maxLength` characters of the file; empty if there is no file. A file that is not UTF-8 is moved to
    /// `corruptPath`, replacing an earlier one, and the result is empty. Throws StorageError if the file cannot be read
    /// or moved; it is then left unchanged.
    QString load() const;
    /// Replaces the file atomically, mode 0600, and creates its folder if needed. Throws StorageError.
    void save(const QString& text) const;

    /// The number of characters in `text`.
    static qsizetype length(const QString& text);
    /// The first `length` characters of `text`.
    static QString capped(const QString& text, qsizetype length = maxLength);
};

} // namespace kestro
