#include "KestroCore/Shortcuts/KeyCombo.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace kestro;

namespace {

TEST(KeyCombo, namesAndValidity)
{
    const std::tuple<KeyCombo, const char*, bool> table[] = { { KeyCombo::openNotchDefault, "⌃⌥Space", true },
        { { 1, KeyCombo::command | KeyCombo::shift | KeyCombo::option | KeyCombo::control }, "⌃⌥⇧⌘S", true },
        { { 1, KeyCombo::shift }, "⇧S", false }, { { 1, 1024 }, "S", false }, { { 96, 0 }, "F5", true },
        { { 90, KeyCombo::shift }, "⇧F20", true }, { { 0, KeyCombo::command }, "⌘A", true },
        { { 29, KeyCombo::command }, "⌘0", true }, { { 50, KeyCombo::option }, "⌥`", true },
        { { 200, KeyCombo::command }, "⌘Key 200", true } };
    for (const auto& [combo, shown, valid] : table) {
        EXPECT_EQ(combo.displayString().toStdString(), shown);
        EXPECT_EQ(combo.isValid(), valid) << shown;
    }
}

TEST(KeyCombo, leavesProgramsTheirOwnCombinations)
{
    using K = KeyCombo;
    const std::pair<KeyCombo, bool> table[] = { { { 1, K::command }, true }, { { 40, K::command | K::shift }, true },
        { { 29, K::command }, true }, { { 1, K::control }, true }, { { 20, K::control | K::shift }, true },
        { { 1, K::control | K::command }, false }, { { 1, K::option }, false }, { { 123, K::command }, false },
        { { 49, K::control }, false }, { { 27, K::command }, false }, { { 96, K::command }, false },
        { { 21, K::command | K::shift }, false }, { { 21, K::command }, true },
        { { 21, K::control | K::shift }, true } };
    for (const auto& [combo, shadows] : table)
        EXPECT_EQ(combo.shadowsStandardShortcut(), shadows) << combo.displayString().toStdString();
}

TEST(KeyCombo, readsTheFlagsOfAPress)
{
    const std::pair<quint64, const char*> table[] = { { 0, "A" }, { 1 << 17, "⇧A" }, { 1 << 18, "⌃A" },
        { 1 << 19, "⌥A" }, { 1 << 20, "⌘A" }, { 0x1E0000, "⌃⌥⇧⌘A" }, { 1 << 16 | 1 << 21 | 0xFF, "A" } };
    for (const auto& [flags, shown] : table)
        EXPECT_EQ(KeyCombo::fromFlags(0, flags).displayString().toStdString(), shown);
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
    const std::pair<const char*, std::optional<KeyCombo>> good[] = {
        { R"({"keyCode":20,"modifiers":768})", read },
        { R"({"keyCode":20.0,"modifiers":768,"more":[1]})", read },
        { R"({"keyCode":4294967295,"modifiers":0})", KeyCombo{ 4294967295, 0 } },
        { "null", std::nullopt },
    };
    for (const auto& [json, expected] : good)
        EXPECT_EQ(KeyCombo::decodeStored(QByteArray(json), fallback), expected) << json;
    for (const char* json : { "", "[]", "{}", R"({"keyCode":20})", R"({"keyCode":"20","modifiers":768})",
             R"({"keyCode":-1,"modifiers":768})", R"({"keyCode":20.5,"modifiers":768})",
             R"({"keyCode":4294967296,"modifiers":768})", R"({"keyCode":1e999,"modifiers":768})",
             R"({"keyCode":20,"modifiers":768)" })
        EXPECT_EQ(KeyCombo::decodeStored(QByteArray(json), fallback), fallback) << json;
    EXPECT_EQ(KeyCombo::decodeStored(std::nullopt, fallback), fallback);
    EXPECT_EQ(KeyCombo::decodeStored(QByteArray("nonsense"), std::nullopt), std::nullopt);

    for (const std::optional<KeyCombo>& combo : { std::optional<KeyCombo>(), std::optional(read) })
        EXPECT_EQ(KeyCombo::decodeStored(KeyCombo::encodeStored(combo), fallback), combo);
}

} // namespace
