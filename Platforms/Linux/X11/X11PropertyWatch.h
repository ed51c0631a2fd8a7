#pragma once

#include "Platforms/Linux/X11/X11EventSelection.h"

#include <QByteArray>
#include <QObject>
#include <functional>
#include <initializer_list>

namespace kestro {

/// Tells changes of some properties of a window, the root for one, for as long as this lives.
class X11PropertyWatch {
public:
    /// `changed` may destroy this. `connection` outlives it.
    X11PropertyWatch(X11Connection& connection, xcb_window_t window, std::initializer_list<const char*> names,
        std::function<void()> changed);

private:
    QObject m_context;
    X11EventSelection m_selection;
};

} // namespace kestro
