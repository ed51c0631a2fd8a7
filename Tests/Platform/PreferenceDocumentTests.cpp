#include "Helpers.h"
#include "Platforms/Linux/System/PreferenceDocument.h"
#include "Platforms/Linux/System/PreferenceValue.h"

#include <gmock/gmock.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace kestro {
namespace {

TEST(PreferenceValue, SpellsEveryTypeAndReadsItBack)
{
    const QByteArray bytes("\0\xFF{}", 4);
    const struct {
        QVariant value;
        const char* json;
    } cases[] = {
        { true, "true" },
        { 2, "2" },
        { 0.1, "0.1" },
        { -9007199254740991.0, "-9007199254740991" },
        { 1e300, "1e+300" },
        { QStringLiteral("a\"\\\n\u00e9\U0001F600"), R"("a\"\\\né😀")" },
        { QString(), R"("")" },
        { bytes, R"({"$data":"AP97fQ=="})" },
        { QByteArray(), R"({"$data":""})" },
        { QVariantList{ 1, QVariant(), QStringLiteral("x") }, R"([1,null,"x"])" },
        { QStringList{ QStringLiteral("a"), QStringLiteral("b") }, R"(["a","b"])" },
        { QVariantMap{ { QStringLiteral("k"), bytes } }, R"({"k":{"$data":"AP97fQ=="}})" },
        // what the user named like our mark
        { QVariantMap{ { QStringLiteral("$data"), QStringLiteral("AA==") } }, R"({"$$data":"AA=="})" },
        { QVariantMap{ { QStringLiteral("$$data"), 1 }, { QStringLiteral("$data"), 2 } },
            R"({"$$$data":1,"$$data":2})" },
        { QVariantMap{ { QStringLiteral("data"), 1 }, { QStringLiteral("$x"), 2 } }, R"({"$x":2,"data":1})" },
    };
    for (const auto& c : cases) {
        const auto json = PreferenceValue::toJson(c.value);
        ASSERT_TRUE(json) << c.json;
        EXPECT_EQ(json->dump(), nlohmann::json::parse(c.json).dump());
        const QVariant back = PreferenceValue::fromJson(*json);
        EXPECT_EQ(PreferenceValue::toJson(back)->dump(), json->dump());
        EXPECT_EQ(back.metaType() == c.value.metaType(),
            c.value.metaType().id() != QMetaType::Int && c.value.metaType().id() != QMetaType::QStringList);
    }
}

TEST(PreferenceValue, ReadsWhatOnlyLooksLikeDataAsItself)
{
    for (const char* const text : { R"({"$data":5})", R"({"$data":"AA==","x":1})", R"({"$data":"*"})" }) {
        const QVariant value = PreferenceValue::fromJson(nlohmann::json::parse(text));
        EXPECT_EQ(value.metaType().id(), QMetaType::QVariantMap) << text;
        EXPECT_TRUE(value.toMap().contains(QStringLiteral("$data"))) << text;
    }
}

TEST(PreferenceValue, RefusesWhatCannotBeReadBack)
{
    QVariant deep;
    for (int i = 0; i < 600; ++i)
        deep = QVariantList{ deep };
    for (const QVariant& value : { QVariant(std::numeric_limits<double>::quiet_NaN()),
             QVariant(std::numeric_limits<double>::infinity()), QVariant(QPoint(1, 2)), deep })
        EXPECT_FALSE(PreferenceValue::toJson(value)) << value.typeName();
}

TEST(PreferenceValue, TakesTheTypeIntoTheComparison)
{
    EXPECT_FALSE(PreferenceValue::same(true, 1.0));
    EXPECT_FALSE(PreferenceValue::same(QVariantList{ true }, QVariantList{ 1.0 }));
    EXPECT_FALSE(PreferenceValue::same(QStringLiteral("x"), QByteArray("x")));
    EXPECT_FALSE(PreferenceValue::same({}, false));
    EXPECT_TRUE(PreferenceValue::same(QVariantList{ 1.0 }, QVariantList{ 1.0 }));
}

TEST(PreferenceDocument, ChangesOneMemberAndKeepsTheSpellingOfTheOthers)
{
    const struct {
        const char* before;
        const char* key;
        QVariant value;
        const char* after;
    } cases[] = {
        { "{}", "a", 1, "{\n  \"a\": 1\n}\n" },
        { R"({"big":123456789012345678901234567890,"e":1.50e-3})", "a", true,
            "{\n  \"big\": 123456789012345678901234567890,\n  \"e\": 1.50e-3,\n  \"a\": true\n}\n" },
        { R"({"a" : [ 1 , {"}":","} ] ,"b":"\"}"})", "b", 2, "{\n  \"a\": [ 1 , {\"}\":\",\"} ],\n  \"b\": 2\n}\n" },
        { R"({"\u0061":1,"b":null})", "a", 2, "{\n  \"\\u0061\": 2,\n  \"b\": null\n}\n" },
        { R"({"a":1,"b":2,"a":3})", "a", 4, "{\n  \"a\": 4,\n  \"b\": 2\n}\n" },
        { R"({"a":1,"b":2,"a":3})", "a", {}, "{\n  \"b\": 2\n}\n" },
        { R"({"a":1})", "a", {}, "{}\n" },
        { "\xEF\xBB\xBF{\"a\":{}}", "b", 1, "{\n  \"a\": {},\n  \"b\": 1\n}\n" },
    };
    for (const auto& c : cases) {
        auto document = PreferenceDocument::parse(c.before);
        ASSERT_TRUE(document) << c.before;
        EXPECT_TRUE(document->set(QLatin1String(c.key), c.value)) << c.before;
        EXPECT_STREQ(document->text().constData(), c.after);
        const auto again = PreferenceDocument::parse(document->text());
        ASSERT_TRUE(again) << c.after;
        EXPECT_EQ(again->values().size(), document->values().size());
    }
}

TEST(PreferenceDocument, CountsWhatIsThereAlreadyAsNoChange)
{
    auto document = PreferenceDocument::parse(R"({"a": 2.0, "n": null})");
    ASSERT_TRUE(document);
    EXPECT_FALSE(document->set(QStringLiteral("a"), 2.0));
    EXPECT_FALSE(document->set(QStringLiteral("n"), {}));
    EXPECT_TRUE(document->set(QStringLiteral("a"), true));
}

TEST(PreferenceDocument, RefusesWhatIsNoObject)
{
    for (const QByteArray& text : { QByteArray(), QByteArray("[]"), QByteArray("{"), QByteArray(R"({"a":1} x)"),
             QByteArray("{\"a\":\"\xFF\"}"), "{\"a\":" + QByteArray(100'000, '[') })
        EXPECT_FALSE(PreferenceDocument::parse(text)) << text.left(20).constData();
}

} // namespace
} // namespace kestro
