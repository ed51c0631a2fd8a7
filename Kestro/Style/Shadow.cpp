#include "Shadow.h"

#include <algorithm>
#include <vector>

namespace kestro {

namespace {

/// The mean of the pixels up to `radius` away, along one line of pixels that are `step` bytes apart.
void blurLine(uchar* line, int count, qsizetype step, int radius, std::vector<uchar>& copy)
{
    const int width = 2 * radius + 1;
    for (int i = 0; i < count; ++i) {
        copy[static_cast<size_t>(i)] = line[i * step];
    }
    const auto at = [&](int i) { return i >= 0 && i < count ? copy[static_cast<size_t>(i)] : uchar(0); };
    int sum = 0;
    for (int i = -radius; i <= radius; ++i) {
        sum += at(i);
    }
    for (int i = 0; i < count; ++i) {
        line[i * step] = static_cast<uchar>((sum + radius) / width);
        sum += at(i + radius + 1) - at(i - radius);
    }
}

} // namespace

void blurAlpha(QImage& alpha, qreal reach)
{
    // Three means in a row come near to a bell curve, and are much cheaper than one.
    constexpr int passes = 3;
    const int radius = std::max(1, qRound(reach / passes));
    std::vector<uchar> copy(static_cast<size_t>(std::max(alpha.width(), alpha.height())));
    uchar* bits = alpha.bits();
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < alpha.height(); ++y) {
            blurLine(bits + y * alpha.bytesPerLine(), alpha.width(), 1, radius, copy);
        }
        for (int x = 0; x < alpha.width(); ++x) {
            blurLine(bits + x, alpha.height(), alpha.bytesPerLine(), radius, copy);
        }
    }
}

} // namespace kestro
