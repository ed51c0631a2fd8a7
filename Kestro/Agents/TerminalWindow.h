#pragma once

#include "Kestro/Platform/DesktopWindows.h"
#include "KestroCore/Agents/HookOrigin.h"

namespace kestro {

/// Whether `window` belongs to a process of `origin`.
bool isOwner(const HookOrigin& origin, const DesktopWindow& window);

/// The window, of `windows`, in which a process of this `origin` shows itself; 0 where none can be told. In this order:
/// `promptWindow`, in which the user was seen to write to it (0: never); the only window of its nearest ancestor that
/// has any; the one that its environment names; one of that ancestor whose title holds `project`.
quint32 terminalWindow(
    const HookOrigin& origin, const QString& project, quint32 promptWindow, const std::vector<DesktopWindow>& windows);

} // namespace kestro
