#include "KestroCore/Agents/MessageFramer.h"
#include "KestroCore/Support/ForeignJson.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kestro {
namespace {

using namespace std::string_literals;
using State = MessageFramer::State;

SocketMessage event(Agent agent, const char* id, const char* folder, const char* name)
{
    return { AgentEvent{ agent, QString::fromUtf8(id), QString::fromUtf8(folder), QString::fromUtf8(name) } };
}

/// A message of Claude Code whose object begins with what is needed and goes on with `rest`, its end included.
std::string stop(const std::string& rest)
{
    return "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"" + rest;
}

std::string cursor(const char* roots)
{
    return "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"stop\",\"workspace_roots\":"s + roots
        + ",\"session_id\":\"no\",\"cwd\":\"/no\"}";
}

std::string nested(int depth, char open, char close)
{
    const auto inner = static_cast<size_t>(depth - 1);
    return stop(",\"x\":" + std::string(inner, open) + std::string(inner, close) + "}");
}

using Cases = std::vector<std::pair<std::string, std::optional<SocketMessage>>>;

Cases goodCases()
{
    const SocketMessage rootless = event(Agent::cursor, "c", "", "stop");
    const AgentLimits both{ UsageWindow{ 12.5, Date{ 0 } }, UsageWindow{ -3, Date{ 1.5 } } };
    const AgentLimits weekly{ {}, UsageWindow{ 18446744073709551616.0, Date{ 0 } } };
    return {
        // What agents send.
        { stop(",\"cwd\":\"/w/p\"}\n"), event(Agent::claude, "a", "/w/p", "Stop") },
        { "agent=codex\n\r\n\t {\"hook_event_name\":\"Interrupt\",\"session_id\":\"\"} \r\n",
            event(Agent::codex, "", "", "Interrupt") },
        { cursor("[\"/w\",\"/v\"]"), event(Agent::cursor, "c", "/w", "stop") },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":12.5,\"resets_at\":978307200},"
          "\"seven_day\":{\"resets_at\":978307201.5,\"used_percentage\":-3}}}",
            SocketMessage{ both } },
        // What looks like the message's end or its keys and is not.
        { "agent=claude\n"
          R"({"x":"}\"{[\\","cwd":"/\u00e9\ud83d\ude00","y":[{"session_id":"in"}],)"
          R"("session_id":"}","hook_event_name":"e"})",
            event(Agent::claude, "}", "/é😀", "e") },
        { "agent=claude\n{\"session_id\":1,\"session_id\":\"b\",\"hook_event_name\":\"e\",\"cwd\":\"/a\",\"cwd\":[]}",
            event(Agent::claude, "b", "", "e") },
        { cursor("[]"), rootless },
        { cursor("[\"/w\",{}]"), rootless },
        { cursor("[[\"/w\"]]"), rootless },
        { cursor("[1,\"/w\"]"), rootless },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":\"12\",\"resets_at\":0},"
          "\"seven_day\":{\"used_percentage\":18446744073709551616,\"resets_at\":978307200}}}",
            SocketMessage{ weekly } },
        { stop(",\"a.b\":null,\"t\":true,\"n\":-1e3}"), event(Agent::claude, "a", "", "Stop") },
        { nested(ForeignJson::maxDepth, '[', ']'), event(Agent::claude, "a", "", "Stop") },
    };
}

Cases allCases()
{
    Cases cases = goodCases();
    const std::string window = "{\"used_percentage\":1,\"resets_at\":0}";
    const std::string bad[] = { // Headers.
        "", "agent=claude{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        "agent=claude\r\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        "Agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        "agent=gemini\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        "agent=\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        "limits=codex\n{\"rate_limits\":{\"five_hour\":" + window + "}}", "\xff\xfe\n{}",
        // Bodies.
        "agent=claude\n", "agent=claude\n[{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}]", "agent=claude\n7",
        stop(",\"session_id\":7}"), stop(",\"session_id\":null}"), "agent=claude\n{\"session_id\":\"a\"}",
        "agent=cursor\n{\"session_id\":\"a\",\"hook_event_name\":\"stop\"}", "limits=claude\n{\"rate_limits\":[1]}",
        "limits=claude\n{\"rate_limits\":{\"five_hour\":" + window + "},\"rate_limits\":0}",
        "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":true,\"resets_at\":0}}}",
        "limits=claude\n{\"rate_limits.five_hour\":" + window + "}",
        // Broken JSON.
        stop(""), stop("]"), stop(",}"), stop(",\"x\":1e999}"), stop(",\"x\":\"\xc3\x28\"}"),
        stop(",\"x\":\"\xed\xa0\x80\"}"), stop(",\"x\":\"\\ud800\"}"), stop("\0}"s),
        "agent=claude\n\xef\xbb\xbf{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}",
        // Something behind the object, and depth.
        stop("} {}"), stop("}\n\0"s), nested(ForeignJson::maxDepth + 1, '[', ']'),
        nested(ForeignJson::maxDepth + 1, '{', '}')
    };
    for (const std::string& bytes : bad)
        cases.emplace_back(bytes, std::nullopt);
    return cases;
}

std::optional<SocketMessage> framed(const std::vector<QByteArrayView>& pieces)
{
    MessageFramer framer;
    for (const QByteArrayView piece : pieces)
        framer.feed(piece);
    return framer.message();
}

TEST(Message, ReadsAlikeHoweverItIsSplit)
{
    for (const auto& [bytes, expected] : allCases()) {
        SCOPED_TRACE(bytes);
        const QByteArrayView all(bytes);
        EXPECT_EQ(SocketMessage::parse(all), expected);
        std::vector<QByteArrayView> single;
        for (qsizetype at = 0; at < all.size(); ++at) {
            EXPECT_EQ(framed({ all.first(at), all.sliced(at) }), expected) << "split at " << at;
            single.push_back(all.sliced(at, 1));
        }
        EXPECT_EQ(framed(single), expected);
    }
}

TEST(Message, RefusesLongIdsAndCutsOtherTexts)
{
    const auto parsed = [](const std::string& id, const std::string& text) {
        return AgentEvent::parse(QByteArray::fromStdString("agent=claude\n{\"session_id\":\"" + id
            + "\",\"hook_event_name\":\"" + text + "\",\"cwd\":\"" + text + "\"}"));
    };
    const auto faces = [](int count) { // two units of UTF-16 each
        std::string all;
        for (int i = 0; i < count; ++i)
            all += "\xf0\x9f\x98\x80";
        return all;
    };
    const struct {
        const char* name;
        std::string text;
        bool isId;
        qsizetype event, folder;
    } table[] = {
        { "as long as an id may be", std::string(256, 'x'), true, 128, 256 },
        { "one more", std::string(257, 'x'), false, 128, 257 },
        { "as long in two units each", faces(128), true, 128, 256 },
        { "one more of them", faces(129), false, 128, 258 },
        { "a folder", std::string(4096, 'x'), false, 128, 4096 },
        { "100 KB", std::string(100'000, 'x'), false, 128, 4096 },
        { "80 KB that are cut within a character", "x" + faces(20'000), false, 127, 4095 },
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        // Cut, two long ids with the same beginning would be one session.
        EXPECT_EQ(parsed(row.text, "x").has_value(), row.isId);
        const auto event = parsed("id", row.text);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->name.size(), row.event);
        EXPECT_EQ(event->cwd.size(), row.folder);
        EXPECT_TRUE(QString::fromUtf8(row.text.c_str()).startsWith(event->cwd));
        EXPECT_LE(event->cwd.capacity(), 2 * row.folder);
    }
}

TEST(MessageFramer, TellsTheEndWithItsLastByte)
{
    const QByteArray message("agent=claude\n{\"session_id\":\"}\",\"hook_event_name\":\"Stop\",\"x\":{\"y\":[]}}");
    MessageFramer framer;
    for (qsizetype at = 0; at + 1 < message.size(); ++at)
        ASSERT_EQ(framer.feed(QByteArrayView(message).sliced(at, 1)), State::reading) << at;
    EXPECT_EQ(framer.feed("}"), State::complete);
    EXPECT_EQ(framer.feed("\n \t"), State::complete);
    EXPECT_TRUE(framer.message());
    EXPECT_EQ(framer.feed("x"), State::invalid);
    EXPECT_FALSE(framer.message());
}

TEST(MessageFramer, GivesUpAtOnceAndHoldsNothing)
{
    const std::pair<const char*, QByteArray> hopeless[] = {
        { "no newline", QByteArray(65, 'a') },
        { "unknown header", "agent=other\n" },
        { "array", "agent=claude\n [" },
        { "deep arrays", "agent=claude\n{\"x\":" + QByteArray(100'000, '[') },
        { "deep objects", "agent=claude\n" + QByteArray(100'000, '{') },
    };
    for (const auto& [name, bytes] : hopeless) {
        SCOPED_TRACE(name);
        MessageFramer framer;
        for (const QByteArray& part : { bytes, QByteArray("{}") }) {
            EXPECT_EQ(framer.feed(part), State::invalid);
            EXPECT_EQ(framer.size(), 0);
        }
    }
}

TEST(MessageFramer, EndsAtItsSize)
{
    const QByteArray head("agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":\"");
    constexpr qsizetype maxBytes = 4096;
    for (const qsizetype over : { 0, 1 }) {
        SCOPED_TRACE(over);
        QByteArray message = head;
        message.append(maxBytes + over - head.size() - 2, 'x').append("\"}");
        MessageFramer framer(maxBytes);
        EXPECT_EQ(framer.feed(message), over ? State::invalid : State::complete);
        EXPECT_EQ(framer.message().has_value(), !over);
        EXPECT_EQ(framer.room(), 0);
    }
}

} // namespace
} // namespace kestro
