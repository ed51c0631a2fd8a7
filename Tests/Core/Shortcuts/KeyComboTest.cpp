#include "KestroCore/Shortcuts/KeyCombo.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace kestro;

namespace {

TEST(KeyCombo, namesAndValidity)
{
    struct {
        KeyCombo combo;
        const char* shown;
        bool valid;
    } const table[] = {
        { KeyCombo::openNotchDefault, "⌃⌥Space", true },
        { { 1, KeyCombo::command | KeyCombo::shift | KeyCombo::option | KeyCombo::control }, "⌃⌥⇧⌘S", true },
        { { 1, KeyCombo::shift }, "⇧S", false },
        { { 1, 0 }, "S", false },
        { { 1, 1024 }, "S", false }, // Caps Lock is none of the four
        { { 96, 0 }, "F5", true },
        { { 90, KeyCombo::shift }, "⇧F20", true },
        { { 0, KeyCombo::command }, "⌘A", true },
        { { 6, KeyCombo::command }, "⌘Z", true },
        { { 29, KeyCombo::command }, "⌘0", true },
        { { 25, KeyCombo::command }, "⌘9", true },
        { { 50, KeyCombo::option }, "⌥`", true },
        { { 126, KeyCombo::control }, "⌃↑", true },
        { { 200, KeyCombo::command }, "⌘Key 200", true },
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.combo.displayString().toStdString(), row.shown);
        EXPECT_EQ(row.combo.isValid(), row.valid) << row.shown;
    }
}

// A slip in the tables gives one key's name to another: the counts and the uniqueness catch it.
TEST(KeyCombo, everyNameIsGivenOnce)
{
    std::set<QString> names;
    int functionKeys = 0;
    for (quint32 code = 0; code < 256; ++code) {
        const QString name = KeyCombo::keyName(code);
        if (name.startsWith(u"Key "))
            continue;
        EXPECT_TRUE(names.insert(name).second) << name.toStdString();
        functionKeys += KeyCombo{ code, 0 }.isValid();
    }
    EXPECT_EQ(functionKeys, 20);
    EXPECT_EQ(names.size(), 82u);
}

TEST(KeyCombo, storedForms)
{
    const KeyCombo fallback{ 7, 7 };
    const KeyCombo read{ 20, 768 };
    struct {
        const char* json;
        std::optional<KeyCombo> expected;
    } const table[] = {
        { R"({"keyCode":20,"modifiers":768})", read },
        { R"({"keyCode":20.0,"modifiers":768,"more":[1]})", read },
        { R"({"keyCode":4294967295,"modifiers":0})", KeyCombo{ 4294967295, 0 } },
        { "null", std::nullopt },
        { "", fallback },
        { "[]", fallback },
        { "{}", fallback },
        { R"({"keyCode":20})", fallback },
        { R"({"keyCode":"20","modifiers":768})", fallback },
        { R"({"keyCode":-1,"modifiers":768})", fallback },
        { R"({"keyCode":20.5,"modifiers":768})", fallback },
        { R"({"keyCode":4294967296,"modifiers":768})", fallback },
        { R"({"keyCode":1e999,"modifiers":768})", fallback },
        { R"({"keyCode":20,"modifiers":768)", fallback },
    };
    for (const auto& row : table)
        EXPECT_EQ(KeyCombo::decodeStored(QByteArray(row.json), fallback), row.expected) << row.json;
    EXPECT_EQ(KeyCombo::decodeStored(std::nullopt, fallback), fallback);
    EXPECT_EQ(KeyCombo::decodeStored(QByteArray("nonsense"), std::nullopt), std::nullopt);

    for (const std::optional<KeyCombo>& combo : { std::optional<KeyCombo>(), std::optional(read) })
        EXPECT_EQ(KeyCombo::decodeStored(KeyCombo::encodeStored(combo), fallback), combo);
}

} // namespace
