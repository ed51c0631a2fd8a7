#include "KestroCore/Layout/NotchScreen.h"

#include <gmock/gmock.h>

using namespace kestro;

namespace {

const ScreenInfo above{ 1, { 0, 900, 1000, 600 }, false };
const ScreenInfo primary{ 2, { 0, 0, 1440, 900 }, false };
const ScreenInfo notched{ 3, { -800, 0, 800, 500 }, true };

std::optional<quint32> idOf(const std::optional<ScreenInfo>& found)
{
    return found ? std::optional(found->id) : std::nullopt;
}

TEST(NotchScreen, home)
{
    EXPECT_EQ(idOf(NotchScreen::home({ above, primary, notched })), 3);
    EXPECT_EQ(idOf(NotchScreen::home({ above, primary })), 2);
    EXPECT_EQ(idOf(NotchScreen::home({ above })), 1);
    EXPECT_EQ(idOf(NotchScreen::home({})), std::nullopt);
}

TEST(NotchScreen, target)
{
    const auto pointer = NotchScreenMode::pointer;
    const std::tuple<const char*, NotchScreenMode, QPointF, std::optional<quint32>, quint32> table[] = {
        { "the built-in one, wherever the pointer is", NotchScreenMode::builtIn, { 500, 1499 }, 1, 3 },
        { "the top band calls", pointer, { 500, 1460 }, 2, 1 },
        { "just under it", pointer, { 500, 1459.9 }, 2, 2 },
        { "the topmost point of a screen under another: the first listed", pointer, { 500, 900 }, 1, 2 },
        { "the near side belongs to it", pointer, { 0, 880 }, 1, 2 },
        { "the far side does not", pointer, { 1440, 880 }, 1, 1 },
        { "nowhere, and the current one is gone", pointer, { 500, 400 }, 9, 3 },
        { "nowhere, from the start", pointer, { 500, 400 }, {}, 3 },
    };
    for (const auto& [what, mode, point, current, expected] : table) {
        const auto target = NotchScreen::target({ above, primary, notched }, mode, point, current);
        EXPECT_EQ(idOf(target), expected) << what;
    }
    EXPECT_EQ(NotchScreen::target({}, pointer, { 0, 0 }, 1), std::nullopt);
}

TEST(NotchScreen, pillRect)
{
    EXPECT_EQ(NotchScreen::pillRect(primary.frame, 200, 32), QRectF(620, 868, 200, 32));
    EXPECT_EQ(NotchScreen::pillRect(notched.frame, 1, 1), QRectF(-480, 476, 160, 24));
    EXPECT_EQ(NotchScreen::pillRect(above.frame, 999, 999), QRectF(370, 1460, 260, 40));
}

} // namespace
