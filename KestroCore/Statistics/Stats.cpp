#include "KestroCore/Statistics/Stats.h"

namespace kestro {

double cpuUsage(const CPUTicks& from, const CPUTicks& to)
{
    // Differences in 32 bits, so that a counter which wrapped still gives the small step that it made.
    const quint32 user = to.user - from.user;
    const quint32 system = to.system - from.system;
    const quint32 nice = to.nice - from.nice;
    const quint32 idle = to.idle - from.idle;
    const quint64 busy = quint64(user) + system + nice;
    const quint64 total = busy + idle;
    return total == 0 ? 0 : double(busy) / double(total);
}

} // namespace kestro
