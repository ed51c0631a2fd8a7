#pragma once

#include "KestroCore/Agents/Agent.h"

#include <QString>

namespace kestro {

/// The symbol that stands for the agent wherever it is shown.
QString agentSymbol(Agent agent);

} // namespace kestro
