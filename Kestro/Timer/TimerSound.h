#pragma once

namespace kestro {

/// The sound of a timer that has ended. Main thread.
class TimerSound {
public:
    virtual ~TimerSound() = default;

    /// Returns at once; plays nothing where the desktop has no sounds or the user has switched them off.
    virtual void play() = 0;
};

} // namespace kestro
