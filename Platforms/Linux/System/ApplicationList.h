#pragma once

#include "Kestro/Platform/Workspace.h"

#include <QStringList>

/// The applications that the desktop's menus show.
namespace kestro::ApplicationList {

/// The desktop entries of the user and of the system. Where two have one identifier, the first folder's counts,
/// whatever is in it: that is how a user hides an application.
QStringList entries();

/// By name as the user reads it, without regard to case and accents.
void sort(QList<Application>& applications);

} // namespace kestro::ApplicationList
