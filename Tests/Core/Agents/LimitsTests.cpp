#include "KestroCore/Agents/AgentLimitsRow.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using Limits = std::optional<AgentLimits>;

Limits limits(std::optional<double> fiveHour, std::optional<double> weekly)
{
    const auto window = [](std::optional<double> percent) { return UsageWindow::from(percent, 978307200); };
    return AgentLimits{ window(fiveHour), window(weekly) };
}

TEST(AgentLimits, ReadsTheStatusLine)
{
    const std::tuple<const char*, const char*, Limits> cases[] = {
        { "no plan", R"({"model":{"id":"m"},"rate_limits":null})", {} },
        { "as it comes",
            R"({"cost":{"usd":0.1},"rate_limits":{"five_hour":{"used_percentage":28.000000000000004,)"
            R"("resets_at":978307200},"seven_day":{"used_percentage":120,"resets_at":978307200.0},"x":[]},"v":"2"})",
            limits(28.000000000000004, 120) },
        { "one window", R"({"rate_limits":{"five_hour":{"used_percentage":-1,"resets_at":978307200}}})",
            limits(-1, {}) },
        { "no reset", R"({"rate_limits":{"five_hour":{"used_percentage":1},"seven_day":{"resets_at":1}}})", {} },
        { "one bad window",
            R"({"rate_limits":{"five_hour":[],"seven_day":{"used_percentage":7,"resets_at":978307200}}})",
            limits({}, 7) },
        { "the other agent's words",
            R"({"payload":{"rate_limits":{"primary":{"used_percent":1,"resets_at":1,"window_minutes":300}}}})", {} },
        { "cut", R"({"rate_limits":{"five_hour":{"used_percentage":1,"resets_at":978307200}})", {} },
    };
    for (const auto& [name, json, expected] : cases)
        EXPECT_EQ(AgentLimits::parseClaudeStatus(json), expected) << name;
}

TEST(AgentLimits, ReadsALineOfALog)
{
    const std::tuple<const char*, const char*, Limits> cases[] = {
        { "as it comes",
            R"(,"plan_type":"plus","credits":null,"primary":{"used_percent":28.000000000000004,"window_minutes":300,)"
            R"("resets_at":978307200},"secondary":{"used_percent":9,"window_minutes":10080,"resets_at":978307200})",
            limits(28.000000000000004, 9) },
        { "the length decides, not the key",
            R"(,"primary":{"used_percent":1,"window_minutes":10080.0,"resets_at":978307200},"secondary":null)",
            limits({}, 1) },
        { "the later one of two alike, whatever their order in the text",
            R"(,"secondary":{"used_percent":2,"window_minutes":300,"resets_at":978307200},)"
            R"("primary":{"used_percent":1,"window_minutes":300,"resets_at":978307200})",
            limits(2, {}) },
        { "a bad later one does not clear the first",
            R"(,"primary":{"used_percent":1,"window_minutes":300,"resets_at":978307200},)"
            R"("secondary":{"used_percent":2,"window_minutes":300,"resets_in_seconds":5})",
            limits(1, {}) },
        { "the plan by name",
            R"(,"limit_id":"codex","primary":{"used_percent":1,"window_minutes":300,"resets_at":978307200})",
            limits(1, {}) },
        { "no name", R"(,"limit_id":7,"primary":{"used_percent":1,"window_minutes":300,"resets_at":978307200})",
            limits(1, {}) },
        { "another plan",
            R"(,"limit_id":"codex_other","primary":{"used_percent":1,"window_minutes":300,"resets_at":978307200})",
            {} },
        { "an hour", R"(,"primary":{"used_percent":1,"window_minutes":60,"resets_at":978307200})", {} },
        { "no length", R"(,"primary":{"used_percent":1,"resets_at":978307200})", {} },
        { "a length in words", R"(,"primary":{"used_percent":1,"window_minutes":"300","resets_at":978307200})", {} },
        { "a length beyond any integer",
            R"(,"primary":{"used_percent":1,"window_minutes":1e300,"resets_at":978307200})", {} },
    };
    for (const auto& [name, fields, expected] : cases) {
        const QByteArray line = QByteArray(R"({"timestamp":"t","payload":{"info":{},"rate_limits":{"x":1)") + fields;
        EXPECT_EQ(AgentLimits::parseCodexLine(line + "}}}\r"), expected) << name;
        EXPECT_EQ(AgentLimits::parseCodexLine(line), Limits()) << name << ", cut";
    }
    for (const char* line : { "", "[]", "{}", R"({"payload":[]})", R"({"payload":{"rate_limits":null}})" })
        EXPECT_EQ(AgentLimits::parseCodexLine(line), Limits()) << line;
}

TEST(WindowGauge, ShowsPercentLevelAndTime)
{
    const Date now{ 1000 };
    const std::tuple<double, double, const char*, double, UsageLevel> cases[] = {
        { 28.000000000000004, 30, "28% · 1m", 28.000000000000004 * 44 / 100, UsageLevel::low },
        { 49.6, 3599, "50% · 59m", 49.6 * 44 / 100, UsageLevel::low },
        { 50, 3600, "50% · 1h0m", 22, UsageLevel::medium },
        { 79.5, 86'399, "80% · 23h59m", 79.5 * 44 / 100, UsageLevel::medium },
        { 80, 86'400, "80% · 1d", 80.0 * 44 / 100, UsageLevel::high },
        { 120, 604'800, "100% · 7d", 44, UsageLevel::high },
        { -4, 119.9, "0% · 1m", 0, UsageLevel::low },
        { 5, 400 * 86'400.0, "5% · 400d", 2.2, UsageLevel::low },
        { 1e300, 1e300, "100% · 99999d", 44, UsageLevel::high },
        { 90, 0, "0% · reset", 0, UsageLevel::low },
        { 90, -1, "0% · reset", 0, UsageLevel::low },
    };
    for (const auto& [used, seconds, text, fill, level] : cases) {
        const auto gauge = WindowGauge::of({ used, now + seconds }, QStringLiteral("5h"), now);
        EXPECT_EQ(gauge.text, QString::fromUtf8(text));
        EXPECT_DOUBLE_EQ(gauge.fill(), fill) << text;
        EXPECT_EQ(gauge.level(), level) << text;
    }
}

TEST(LimitsRow, ShowsWhatIsKnown)
{
    const std::tuple<Agent, Limits, const char*, const char*> cases[] = {
        { Agent::claude, {}, "Claude", "No data yet · appears after your next Claude Code message" },
        { Agent::codex, {}, "Codex", "No data yet" },
        { Agent::claude, limits(1, 2), "Claude", "5h week" },
        { Agent::codex, limits({}, 2), "Codex", "week" },
    };
    for (const auto& [agent, known, name, content] : cases) {
        const LimitsRow row = LimitsRow::of(agent, known, Date{ 0 });
        QStringList labels;
        for (const WindowGauge& gauge : row.gauges)
            labels.append(gauge.label);
        EXPECT_EQ(row.name, QLatin1String(name));
        EXPECT_EQ(row.note + labels.join(QLatin1Char(' ')), QString::fromUtf8(content));
    }
}

} // namespace
} // namespace kestro
