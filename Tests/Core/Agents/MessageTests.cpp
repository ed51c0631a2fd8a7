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

SocketMessage limits(std::optional<UsageWindow> fiveHour, std::optional<UsageWindow> weekly)
{
    return { AgentLimits{ fiveHour, weekly } };
}

std::string nested(int depth, char open, char close)
{
    const auto inner = static_cast<size_t>(depth - 1);
    return "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":" + std::string(inner, open)
        + std::string(inner, close) + "}";
}

struct Case {
    std::string bytes;
    std::optional<SocketMessage> expected;
};

const std::vector<Case>& cases()
{
    static const std::vector<Case> all{
        // What agents send.
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"cwd\":\"/w/p\"}\n",
            event(Agent::claude, "a", "/w/p", "Stop") },
        { "agent=codex\n\r\n\t {\"hook_event_name\":\"Interrupt\",\"session_id\":\"\"} \r\n",
            event(Agent::codex, "", "", "Interrupt") },
        { "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"stop\",\"workspace_roots\":[\"/w\",\"/v\"],"
          "\"session_id\":\"no\",\"cwd\":\"/no\"}",
            event(Agent::cursor, "c", "/w", "stop") },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":12.5,\"resets_at\":978307200},"
          "\"seven_day\":{\"resets_at\":978307201.5,\"used_percentage\":-3}}}",
            limits(UsageWindow{ 12.5, Date{ 0 } }, UsageWindow{ -3, Date{ 1.5 } }) },
        // What looks like the message's end or its keys and is not.
        { R"(agent=claude
{"x":"}\"{[\\","cwd":"/\u00e9\ud83d\ude00","y":[{"session_id":"in","hook_event_name":5}],"session_id":"}","hook_event_name":"e"})",
            event(Agent::claude, "}", "/é😀", "e") },
        { "agent=claude\n{\"session_id\":1,\"session_id\":\"b\",\"hook_event_name\":\"e\",\"cwd\":\"/a\",\"cwd\":[]}",
            event(Agent::claude, "b", "", "e") },
        { "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"e\",\"workspace_roots\":[]}",
            event(Agent::cursor, "c", "", "e") },
        { "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"e\",\"workspace_roots\":[\"/w\",{}]}",
            event(Agent::cursor, "c", "", "e") },
        { "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"e\",\"workspace_roots\":[[\"/w\"]]}",
            event(Agent::cursor, "c", "", "e") },
        { "agent=cursor\n{\"conversation_id\":\"c\",\"hook_event_name\":\"e\",\"workspace_roots\":[1,\"/w\"]}",
            event(Agent::cursor, "c", "", "e") },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":\"12\",\"resets_at\":0},"
          "\"seven_day\":{\"used_percentage\":18446744073709551616,\"resets_at\":978307200}}}",
            limits({}, UsageWindow{ 18446744073709551616.0, Date{ 0 } }) },
        { "agent=claude\n{\"a.b\":null,\"t\":true,\"n\":-1e3,\"session_id\":\"s\",\"hook_event_name\":\"Any\"}",
            event(Agent::claude, "s", "", "Any") },
        { nested(ForeignJson::maxDepth, '[', ']'), event(Agent::claude, "a", "", "Stop") },
        // Headers.
        { "", {} },
        { "agent=claude{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        { "agent=claude\r\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        { "Agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        { "agent=gemini\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        { "agent=\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        { "limits=codex\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":1,\"resets_at\":0}}}", {} },
        { "\xff\xfe\n{}", {} },
        // Bodies.
        { "agent=claude\n", {} },
        { "agent=claude\n[{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}]", {} },
        { "agent=claude\n7", {} },
        { "agent=claude\n{\"session_id\":7,\"hook_event_name\":\"Stop\"}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"session_id\":null,\"hook_event_name\":\"Stop\"}", {} },
        { "agent=claude\n{\"session_id\":\"a\"}", {} },
        { "agent=cursor\n{\"session_id\":\"a\",\"hook_event_name\":\"stop\"}", {} },
        { "limits=claude\n{\"rate_limits\":[1]}", {} },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":1,\"resets_at\":0}},\"rate_limits\":0}",
            {} },
        { "limits=claude\n{\"rate_limits\":{\"five_hour\":{\"used_percentage\":true,\"resets_at\":0}}}", {} },
        { "limits=claude\n{\"rate_limits.five_hour\":{\"used_percentage\":1,\"resets_at\":0}}", {} },
        // Broken JSON.
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"]", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":1e999}", {} },
        { "agent=claude\n{\"session_id\":\"\xc3\x28\",\"hook_event_name\":\"Stop\"}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":\"\xed\xa0\x80\"}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":\"\\ud800\"}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"\0}"s, {} },
        { "agent=claude\n\xef\xbb\xbf{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}", {} },
        // Something behind the object.
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"} {}", {} },
        { "agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\"}\n\0"s, {} },
        { nested(ForeignJson::maxDepth + 1, '[', ']'), {} },
        { nested(ForeignJson::maxDepth + 1, '{', '}'), {} },
    };
    return all;
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
    for (const Case& test : cases()) {
        SCOPED_TRACE(test.bytes);
        const QByteArrayView all(test.bytes.data(), static_cast<qsizetype>(test.bytes.size()));
        EXPECT_EQ(SocketMessage::parse(all), test.expected);
        std::vector<QByteArrayView> single;
        for (qsizetype at = 0; at < all.size(); ++at) {
            EXPECT_EQ(framed({ all.first(at), all.sliced(at) }), test.expected) << "split at " << at;
            single.push_back(all.sliced(at, 1));
        }
        EXPECT_EQ(framed(single), test.expected);
    }
}

TEST(MessageFramer, TellsTheEndWithItsLastByte)
{
    const QByteArray message("agent=claude\n{\"session_id\":\"}\",\"hook_event_name\":\"Stop\",\"x\":{\"y\":[]}}");
    MessageFramer framer;
    for (qsizetype at = 0; at + 1 < message.size(); ++at)
        ASSERT_EQ(framer.feed(QByteArrayView(message).sliced(at, 1)), State::Reading) << at;
    EXPECT_EQ(framer.feed("}"), State::Complete);
    EXPECT_EQ(framer.feed("\n \t"), State::Complete);
    EXPECT_TRUE(framer.message());
    EXPECT_EQ(framer.feed("x"), State::Invalid);
    EXPECT_FALSE(framer.message());
}

TEST(MessageFramer, GivesUpAtOnceAndHoldsNothing)
{
    const std::vector<std::pair<const char*, std::string>> hopeless{
        { "no newline", std::string(65, 'a') },
        { "unknown header", "agent=other\n" },
        { "array", "agent=claude\n [" },
        { "deep arrays", "agent=claude\n{\"x\":" + std::string(100'000, '[') },
        { "deep objects", "agent=claude\n" + std::string(100'000, '{') },
    };
    for (const auto& [name, bytes] : hopeless) {
        SCOPED_TRACE(name);
        MessageFramer framer;
        EXPECT_EQ(framer.feed({ bytes.data(), static_cast<qsizetype>(bytes.size()) }), State::Invalid);
        EXPECT_EQ(framer.size(), 0);
        EXPECT_EQ(framer.feed("{}"), State::Invalid);
        EXPECT_EQ(framer.size(), 0);
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
        EXPECT_EQ(framer.feed(message), over ? State::Invalid : State::Complete);
        EXPECT_EQ(framer.message().has_value(), !over);
        EXPECT_EQ(framer.room(), 0);
    }
}

} // namespace
} // namespace kestro
