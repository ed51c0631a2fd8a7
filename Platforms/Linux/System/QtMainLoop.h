#pragma once

#include "Kestro/Platform/MainLoop.h"

#include <QObject>

namespace kestro {

/// The loop of the application object. Nothing in it wakes while nothing is scheduled.
/// Intervals under a second are precise; longer ones may be 5 % off, so that wake-ups fall together.
class QtMainLoop final : public MainLoop {
public:
    Date now() const override;
    [[nodiscard]] WorkItem after(double seconds, Work work) override;
    [[nodiscard]] Timer every(double seconds, Work work) override;
    void post(Work work) override;

private:
    QObject m_context; // what was posted and never ran goes with it
};

} // namespace kestro
