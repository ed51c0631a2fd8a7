// How long one layout of the strip takes: it runs on every move of the pointer over the dock.

#include "KestroCore/Layout/DockLayout.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace kestro;

namespace {

constexpr int batches = 501;
constexpr int layoutsInBatch = 2000;

/// Microseconds a layout, over one batch with the pointer sweeping along the strip.
double batch(const std::vector<DockItemSize>& items, double& sink)
{
    const double length = DockLayout::layout(items, 36, 20, {}, 1, {}).length;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < layoutsInBatch; ++i)
        sink += DockLayout::layout(items, 36, 20, length * i / layoutsInBatch, 1.6, {}).length;
    const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
    return spent.count() / layoutsInBatch;
}

} // namespace

int main()
{
    std::vector<DockItemSize> items(16, DockItemSize::icon);
    for (int i = 0; i < 8; ++i)
        items.insert(items.begin() + 2 + i * 2, DockItemSize::divider);

    double sink = 0;
    std::vector<double> spent;
    for (int i = 0; i < batches; ++i)
        spent.push_back(batch(items, sink));
    std::sort(spent.begin(), spent.end());
    std::printf(
        "layout of %zu items with pointer: median %.3f us, 99th percentile %.3f us (%d batches of %d; sum %g)\n",
        items.size(), spent[batches / 2], spent[batches * 99 / 100], batches, layoutsInBatch, sink);
}
