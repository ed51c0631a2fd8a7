#include "KestroCore/Agents/Session.h"

#include <array>
#include <cmath>

namespace kestro {

QString stateWord(AgentState state)
{
    static constexpr std::array words{ "Idle", "Working", "Needs input", "Done" };
    return QString::fromLatin1(words.at(static_cast<size_t>(state)));
}

QString agoText(double seconds)
{
    const double whole = std::trunc(seconds);
    if (whole < 60)
        return QStringLiteral("now");
    if (whole < 3600)
        return QStringLiteral("%1m ago").arg(static_cast<qint64>(whole / 60));
    return QStringLiteral("%1h ago").arg(static_cast<qint64>(whole / 3600));
}

} // namespace kestro
