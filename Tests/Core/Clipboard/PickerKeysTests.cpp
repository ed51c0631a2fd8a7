#include "KestroCore/Clipboard/PickerKeys.h"

#include <gmock/gmock.h>

using namespace kestro;

namespace {

QUuid row(int n) { return { quint32(n), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 }; }
constexpr auto cmd = KeyCombo::command, opt = KeyCombo::option, ctrl = KeyCombo::control, shift = KeyCombo::shift;

TEST(PickerKeys, table)
{
    using namespace picker;
    using Action = std::optional<PickerAction>;
    struct Case {
        const char* what;
        quint32 code, modifiers;
        int rows, selected; ///< selected 0: none
        bool empty;
        Action expected;
    };
    const Action none;
    const Case table[] = {
        { "up at the top", 126, 0, 3, 1, true, Select{ row(1) } },
        { "up", 126, shift, 3, 3, true, Select{ row(2) } },
        { "up, nothing selected", 126, 0, 3, 0, true, Select{ row(1) } },
        { "up, no rows", 126, 0, 0, 0, true, none },
        { "up with a modifier", 126, opt, 3, 2, true, none },
        { "down", 125, 0, 3, 1, false, Select{ row(2) } },
        { "down at the end", 125, 0, 3, 3, true, Select{ row(3) } },
        { "down, the selected one is not shown", 125, 0, 3, 9, true, Select{ row(1) } },
        { "down, no rows", 125, 0, 0, 0, true, none },
        { "escape", 53, 0, 0, 0, true, Close{} },
        { "escape with everything", 53, cmd | opt | ctrl, 3, 1, false, Close{} },
        { "return", 36, 0, 3, 2, false, Pick{ row(2) } },
        { "shift return", 36, shift, 3, 2, true, Pick{ row(2) } },
        { "enter", 76, 0, 3, 2, true, Pick{ row(2) } },
        { "return, nothing selected", 36, 0, 3, 0, true, none },
        { "option return", 36, opt, 3, 2, true, CopyOnly{ row(2) } },
        { "control return", 36, ctrl, 3, 2, true, none },
        { "command return", 36, cmd, 3, 2, true, none },
        { "delete", 51, 0, 3, 2, true, Delete{ row(2), row(3) } },
        { "delete at the end", 51, 0, 3, 3, true, Delete{ row(3), row(2) } },
        { "delete the only one", 51, 0, 1, 1, true, Delete{ row(1), std::nullopt } },
        { "delete in the text", 51, 0, 3, 2, false, none },
        { "delete with a modifier", 51, cmd, 3, 2, true, none },
        { "command P", 35, cmd, 3, 2, false, TogglePin{ row(2) } },
        { "command option P", 35, cmd | opt, 3, 2, true, none },
        { "P", 35, 0, 3, 2, true, none },
        { "command 1, nothing selected", 18, cmd, 3, 0, false, Pick{ row(1) } },
        { "command 5", 23, cmd, 9, 1, true, Pick{ row(5) } },
        { "command 6", 22, cmd, 9, 1, true, Pick{ row(6) } },
        { "command 9", 25, cmd | shift, 9, 1, true, Pick{ row(9) } },
        { "command 9 of eight", 25, cmd, 8, 1, true, none },
        { "command equals", 24, cmd, 9, 1, true, none },
        { "command minus", 27, cmd, 9, 1, true, none },
        { "1", 18, 0, 3, 1, true, none },
        { "a letter", 0, 0, 3, 1, true, none },
    };
    for (const Case& each : table) {
        QList<QUuid> visible;
        for (int n = 1; n <= each.rows; ++n)
            visible.append(row(n));
        const auto selection = each.selected ? std::optional(row(each.selected)) : std::nullopt;
        EXPECT_EQ(PickerKeys::action({ each.code, each.modifiers }, visible, selection, each.empty), each.expected)
            << each.what;
    }
    EXPECT_EQ(PickerKeys::next(row(9), { row(1) }), std::nullopt);
}

} // namespace
