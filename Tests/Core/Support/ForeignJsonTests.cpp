#include "KestroCore/Support/ForeignJson.h"

#include <clocale>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestro {
namespace {

QByteArray nested(int depth) { return "{\"a\":" + QByteArray(depth - 1, '[') + QByteArray(depth - 1, ']') + '}'; }

TEST(ForeignJson, TellsObjectsFromAllElse)
{
    const std::tuple<const char*, QByteArray, bool> cases[] = {
        { "white space around", "\r\n\t {} \n", true },
        { "byte order mark", "\xEF\xBB\xBF{\"a\":1}", true },
        { "nothing", "", false },
        { "array", "[{}]", false },
        { "null", "null", false },
        { "more behind", "{} {}", false },
        { "a NUL behind, where a parser in C stops", QByteArray("{}\0x", 4), false },
        { "comment", "{} // no", false },
        { "trailing comma", "{\"a\":1,}", false },
        { "leading zero", "{\"a\":01}", false },
        { "not a number", "{\"a\":NaN}", false },
        { "beyond a double", "{\"a\":1e400}", false },
        { "control character in a string", "{\"a\":\"\n\"}", false },
        { "invalid UTF-8 in a string", "{\"a\":\"\xFF\"}", false },
        { "invalid UTF-8 in a key", "{\"\xC3\":1}", false },
        { "overlong UTF-8", "{\"a\":\"\xC0\xAF\"}", false },
        { "a surrogate in UTF-8", "{\"a\":\"\xED\xA0\x80\"}", false },
        { "escaped lone surrogate", "{\"a\":\"\\ud800\"}", false },
        { "escaped pair", "{\"a\":\"\\ud83d\\ude00\"}", true },
        { "escaped NUL", "{\"\\u0000\":\"\\u0000\"}", true },
        { "at the depth limit", nested(ForeignJson::maxDepth), true },
        { "one deeper", nested(ForeignJson::maxDepth + 1), false },
        { "very deep", nested(100'000), false },
        { "very deep and unfinished", QByteArray("{\"a\":").repeated(100'000), false },
        { "UTF-16", QByteArray("{\0}\0", 4), false },
    };
    for (const auto& [name, text, valid] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(ForeignJson::parseObject(text).has_value(), valid);
        const auto document = ForeignJson::parseForEditing(text);
        ASSERT_EQ(document.has_value(), valid);
        if (valid) {
            EXPECT_EQ(ForeignJson::parseForEditing(ForeignJson::print(*document)), document);
        }
    }
}

TEST(ForeignJson, ReadsValues)
{
    const auto read = ForeignJson::parseObject(R"({"b":[1,-2,1.5,true,null,"é"],"a":{"x":1},"a":{"y":2}})");
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, (nlohmann::json{ { "a", { { "y", 2 } } }, { "b", { 1, -2, 1.5, true, nullptr, "é" } } }));
}

TEST(ForeignJson, CarriesEveryNumberAsItWasWritten)
{
    for (const char* number : { "0", "-0", "0.0", "-0.0", "1", "-1", "1.0", "1.50", "1e3", "1E+3", "-2.5e-07",
             "9007199254740993", "9223372036854775807", "9223372036854775808", "-9223372036854775808",
             "-9223372036854775809", "18446744073709551615", "18446744073709551616", "123456789012345678901234567890",
             "0.1000000000000000055", "5e-324", "1e-400", "1.7976931348623157e308" }) {
        SCOPED_TRACE(number);
        const QByteArray text = QByteArray("{\n  \"n\": ") + number + "\n}\n";
        const auto document = ForeignJson::parseForEditing(text);
        ASSERT_TRUE(document);
        EXPECT_EQ(ForeignJson::print(*document), text);
    }
}

TEST(ForeignJson, CarriesNumbersInALocaleWithADecimalComma)
{
    // QCoreApplication takes the user's locale over, and the parser's decimal point with it.
    const QByteArray before = setlocale(LC_NUMERIC, nullptr);
    for (const char* locale : { "de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8" })
        if (setlocale(LC_NUMERIC, locale))
            break;
    const auto document = ForeignJson::parseForEditing("{\"n\":1.50}");
    setlocale(LC_NUMERIC, before.constData());
    ASSERT_TRUE(document);
    EXPECT_EQ(ForeignJson::print(*document), "{\n  \"n\": 1.50\n}\n");
}

TEST(ForeignJson, ComparesNumbersExactly)
{
    const std::pair<QByteArray, QByteArray> different[] = { { "1", "1.0000001" },
        { "9007199254740992", "9007199254740993" }, { "0.1", "0.1000000000000000055" },
        { "18446744073709551616", "18446744073709551617" }, { "1", "true" }, { "1", "\"1\"" }, { "0", "-0" } };
    for (const auto& [a, b] : different) {
        SCOPED_TRACE((a + " and " + b).toStdString());
        EXPECT_NE(ForeignJson::parseForEditing("{\"n\":" + a + '}'), ForeignJson::parseForEditing("{\"n\":" + b + '}'));
    }
    EXPECT_EQ(ForeignJson::parseForEditing(R"({"a":1,"b":[2]})"), ForeignJson::parseForEditing(R"( {"b":[2] ,"a":1})"));
}

TEST(ForeignJson, PrintsSortedAndIndented)
{
    const auto document = ForeignJson::parseForEditing(R"({"b/c":"é\u0001\"\n","B":[],"a":[{"z":1,"y":{}},[2]]})");
    ASSERT_TRUE(document);
    EXPECT_EQ(ForeignJson::print(*document),
        "{\n  \"B\": [],\n  \"a\": [\n    {\n      \"y\": {},\n      \"z\": 1\n    },\n    [\n      2\n    ]\n  ],\n"
        "  \"b/c\": \"é\\u0001\\\"\\n\"\n}\n");
    EXPECT_EQ(ForeignJson::print({ { "version", 1 } }), "{\n  \"version\": 1\n}\n");
}

} // namespace
} // namespace kestro
