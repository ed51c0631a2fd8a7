#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QByteArray>
#include <QByteArrayList>
#include <optional>
#include <sys/stat.h>
#include <vector>

namespace kestro {

/// What a name in a folder stands for; links are never followed.
struct FileFacts {
    bool isFolder = false;
    bool isLink = false;
    qint64 size = 0; ///< bytes on the disk
    double modified = 0; ///< seconds since 1970
    quint64 device = 0;
    quint64 inode = 0;
    quint64 mount = 0; ///< which mount it is seen through: a folder may be mounted in its own file system
    quint64 links = 0;
};

namespace folders {

/// Of the thing called `name` in the open folder, or of the folder itself where the name is empty.
std::optional<FileFacts> look(int folder, const char* name);
/// The folder called `name` in an open one, unless that is a link or something else.
FileDescriptor open(int folder, const char* name);
/// The folder at an absolute path. Links are followed in `base` and nowhere behind it; a path that is not below `base`
/// opens nothing.
FileDescriptor openBelow(const QByteArray& base, const QByteArray& path);
/// The parts of `path` behind `folder`; nothing where it is not below it or has parts that lead elsewhere.
std::optional<QByteArrayList> partsBelow(const QByteArray& path, const QByteArray& folder);

} // namespace folders

/// Goes through a folder and all below it, by descriptors that are opened one from another without following a link,
/// and without entering what is mounted there. However deep the folders lie, few stand open at once.
class FolderWalk {
public:
    virtual ~FolderWalk() = default;

    /// False where something could not be entered or read, or where it was stopped.
    bool run(FileDescriptor folder);

protected:
    /// A file, a link or the like; false stops nothing and counts as something that failed.
    virtual bool file(int folder, const char* name, const FileFacts& facts) = 0;
    /// A folder, before it is entered; false leaves it out.
    virtual bool enters(const char* name, const FileFacts& facts) = 0;
    /// A folder that something else is mounted on, which is never entered; false counts as something that failed.
    virtual bool passes(const char*) { return false; }
    /// Everything in it was seen. `complete`: and nothing failed there. False counts as something that failed.
    virtual bool left(int folder, const char* name, bool complete) = 0;
    virtual bool isStopped() const = 0;
    /// Of the folder that `file` and `enters` tell of, below the first one; empty for that.
    QByteArray place() const;

private:
    struct Level {
        FileDescriptor folder; ///< closed while the walk is far below
        FileFacts facts;
        QByteArray name;
        std::vector<QByteArray> below; ///< folders that are still to be entered
        bool complete = true;
    };
    bool read(Level& level);
    void enterNext();
    bool leave();
    bool reopen(const Level& child, Level& parent) const;

    std::vector<Level> m_levels;
    std::vector<char> m_entries;
};

} // namespace kestro
