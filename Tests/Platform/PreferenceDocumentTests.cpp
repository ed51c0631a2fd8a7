#include "Helpers.h"
#include "Platforms/Linux/System/PreferenceDocument.h"
#include "Platforms/Linux/System/PreferenceValue.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace kestro {
namespace {

using namespace test;

TEST(PreferenceValue, SpellsEveryTypeAndReadsItBack)
{
    const QByteArray bytes("\0\xFF{}", 4);
    const std::pair<QVariant, const char*> cases[] = {
        { true, "true" },
        { 2.0, "2" },
        { 0.1, "0.1" },
        { -9007199254740991.0, "-9007199254740991" },
        { 1e300, "1e+300" },
        { u"a\"\\\n\u00e9\U0001F600"_s, R"("a\"\\\né😀")" },
        { bytes, R"({"$data":"AP97fQ=="})" },
        { QByteArray(), R"({"$data":""})" },
        { QVariantList{ 1.0, QVariant(), u"x"_s }, R"([1,null,"x"])" },
        { QVariantMap{ { u"k"_s, bytes } }, R"({"k":{"$data":"AP97fQ=="}})" },
        // what the user named like our mark
        { QVariantMap{ { u"$data"_s, u"AA=="_s } }, R"({"$$data":"AA=="})" },
        { QVariantMap{ { u"$$data"_s, 1.0 }, { u"$data"_s, 2.0 } }, R"({"$$$data":1,"$$data":2})" },
        { QVariantMap{ { u"data"_s, 1.0 }, { u"$x"_s, 2.0 } }, R"({"$x":2,"data":1})" },
    };
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(text);
        const auto json = PreferenceValue::toJson(value);
        ASSERT_TRUE(json);
        EXPECT_EQ(json->dump(), nlohmann::json::parse(text).dump());
        EXPECT_TRUE(PreferenceValue::same(PreferenceValue::fromJson(*json), value));
    }
    for (const char* const text : { R"({"$data":5})", R"({"$data":"AA==","x":1})", R"({"$data":"*"})" }) {
        const QVariant value = PreferenceValue::fromJson(nlohmann::json::parse(text));
        EXPECT_TRUE(value.toMap().contains(u"$data"_s)) << "only looks like data: " << text;
    }
}

TEST(PreferenceValue, RefusesWhatCannotBeReadBack)
{
    QVariant deep;
    for (int i = 0; i < 600; ++i)
        deep = QVariantList{ deep };
    for (const QVariant& value : { QVariant(std::nan("")), QVariant(HUGE_VAL), QVariant(QPoint(1, 2)), deep })
        EXPECT_FALSE(PreferenceValue::toJson(value)) << value.typeName();
}

TEST(PreferenceDocument, ChangesOneMemberAndKeepsTheSpellingOfTheOthers)
{
    const struct {
        const char* before;
        const char* key;
        QVariant value;
        const char* after;
    } cases[] = {
        { R"({"big":123456789012345678901234567890,"e":1.50e-3})", "a", true,
            "{\n  \"big\": 123456789012345678901234567890,\n  \"e\": 1.50e-3,\n  \"a\": true\n}\n" },
        { R"({"a" : [ 1 , {"}":","} ] ,"b":"\"}"})", "b", 2, "{\n  \"a\": [ 1 , {\"}\":\",\"} ],\n  \"b\": 2\n}\n" },
        { R"({"\u0061":1,"b":null})", "a", 2, "{\n  \"\\u0061\": 2,\n  \"b\": null\n}\n" },
        { R"({"a":1,"b":2,"a":3})", "a", 4, "{\n  \"a\": 4,\n  \"b\": 2\n}\n" },
        { R"({"a":1,"a":3})", "a", {}, "{}\n" },
        { "\xEF\xBB\xBF{\"a\":{}}", "b", 1, "{\n  \"a\": {},\n  \"b\": 1\n}\n" },
    };
    for (const auto& c : cases) {
        auto document = PreferenceDocument::parse(c.before);
        ASSERT_TRUE(document) << c.before;
        EXPECT_TRUE(document->set(QLatin1String(c.key), c.value)) << c.before;
        EXPECT_STREQ(document->text().constData(), c.after);
    }
}

TEST(PreferenceDocument, RefusesWhatIsNoObject)
{
    for (const QByteArray& text : { QByteArray(), QByteArray("[]"), QByteArray("{"), QByteArray(R"({"a":1} x)"),
             QByteArray("{\"a\":\"\xFF\"}"), "{\"a\":" + QByteArray(100'000, '[') })
        EXPECT_FALSE(PreferenceDocument::parse(text)) << text.left(20).constData();
}

} // namespace
} // namespace kestro
