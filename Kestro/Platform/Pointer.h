#pragma once

#include <QPointF>
#include <functional>
#include <memory>

namespace kestro {

/// Ends its watch when it is destroyed.
class PointerWatch {
public:
    virtual ~PointerWatch() = default;
};

/// The pointer, wherever it is on the desktop. Main thread.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// In screen coordinates. On a screen's far edges it stops at the last pixel: it is never seen outside.
    virtual QPointF location() const = 0;

    /// Calls `moved` when the pointer moves anywhere, dragging included, at most once a frame (8 ms), the last
    /// position always told. Hold a watch only while it is needed: each motion of the mouse wakes the process.
    [[nodiscard]] virtual std::unique_ptr<PointerWatch> watch(std::function<void()> moved) = 0;
};

} // namespace kestro
