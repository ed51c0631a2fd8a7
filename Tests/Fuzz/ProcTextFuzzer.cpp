// Everything that is read from procfs, on any bytes at all.

#include "Platforms/Linux/System/ProcText.h"

#include <cstdlib>

using namespace kestro;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto within = [&](std::string_view part) {
        if (!part.empty() && (part.data() < text.data() || part.data() + part.size() > text.data() + text.size()))
            std::abort();
    };
    procText::cpuTicks(text);
    procText::cores(text);
    procText::memory(text, "MemTotal:");
    procText::load(text);
    procText::pressure(text);
    for (const procText::Disk& each : procText::disks(text)) {
        within(each.name);
        procText::looksLikeDisk(each.name);
    }
    procText::interfaces(text);
    procText::primaryInterface(text);
    if (const auto process = procText::process(text))
        within(process->name);
    procText::diskBytes(text);
    procText::applicationIds(text);
    if (procText::printable(text).contains(u'\n'))
        std::abort();
    procText::number(text);
    return 0;
}
