#pragma once

#include "KestroCore/Support/StorageError.h"

namespace kestro {

/// An agent's configuration file that cannot be understood, and was therefore left alone.
class HookInstallerError : public StorageError {
public:
    /// `path` is the display path: the home folder's is written "~".
    static HookInstallerError invalidJson(const QString& path)
    {
        return HookInstallerError(QStringLiteral("Couldn't update %1 — invalid JSON").arg(path));
    }

private:
    using StorageError::StorageError;
};

} // namespace kestro
