#include "KestroCore/Clipboard/ClipStorage.h"

#include <cstdint>
#include <cstdlib>

using namespace kestro;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

/// What is read is written and read again as the same, and every history keeps its limits and its order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    const auto entries = ClipCoding::decode({ reinterpret_cast<const char*>(data), static_cast<qsizetype>(size) });
    if (!entries)
        return 0;
    require(ClipCoding::decode(ClipCoding::encode(*entries)) == entries);

    ClipHistory history(*entries);
    qsizetype images = 0;
    for (qsizetype i = 0; i < history.entries().size(); ++i) {
        const ClipEntry& entry = history.entries()[i];
        require(entry.pinned == (i < history.pinnedCount()));
        images += !entry.pinned && entry.imageFileName();
        static_cast<void>(entry.preview());
    }
    require(images <= ClipHistory::maxImages);
    require(history.entries().size() - history.pinnedCount() <= ClipHistory::maxEntries);
    require(history.search({}, ClipFilter::all) == history.entries());

    const auto before = history.entries();
    QList<QUuid> gone;
    for (qsizetype i = 0; i < before.size(); i += 2) {
        history.remove(before[i].id);
        gone.append(before[i].id);
    }
    history.restore(before, gone);
    require(history.entries().size() - history.pinnedCount() <= ClipHistory::maxEntries);
    return 0;
}
