#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QByteArray>

namespace kestro {

/// The desktop's trash in the home folder, written by descriptors of its folders: what is moved there keeps note of
/// where it was, and moves within one file system or not at all. One thread.
class TrashFolder {
public:
    /// `dataHome` is the desktop's folder of the user's data; `home` as of CleanupRoots. `date` is the local time as
    /// "2026-01-31T12:00:00".
    TrashFolder(const QByteArray& home, const QByteArray& dataHome, QByteArray date);

    /// Moves the thing called `name` in the open folder, which was at `path`; false where it stays.
    bool take(int folder, const QByteArray& name, const QByteArray& path);

private:
    FileDescriptor m_files;
    FileDescriptor m_info;
    QByteArray m_date;
};

} // namespace kestro
