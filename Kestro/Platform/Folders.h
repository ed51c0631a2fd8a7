#pragma once

#include <QString>

namespace kestro {

/// Where the application finds the user's files.
struct Folders {
    QString home; ///< the user's home folder
    QString data; ///< `~/Library/Application Support/Kestro`
    QString caches; ///< `~/Library/Caches/com.lumbra.ombrel`

    static Folders under(const QString& home)
    {
        return { home, home + QStringLiteral("/Library/Application Support/Kestro"),
            home + QStringLiteral("/Library/Caches/com.lumbra.ombrel") };
    }
};

} // namespace kestro
