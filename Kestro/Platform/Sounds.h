#pragma once

#include <QString>

namespace kestro {

/// The desktop's event sounds. Main thread.
class Sounds {
public:
    virtual ~Sounds() = default;

    /// Plays the sound of that name in the desktop's sound theme, by the names that freedesktop.org has set for themes:
    /// "complete", "bell". Returns at once; plays nothing where there is no such sound or no sound server.
    virtual void play(const QString& name) = 0;
};

} // namespace kestro
