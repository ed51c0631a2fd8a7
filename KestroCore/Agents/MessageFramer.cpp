#include "KestroCore/Agents/MessageFramer.h"

#include "KestroCore/Support/ForeignJson.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr qsizetype maxHeaderBytes = 64; // far more than the longest header that is accepted

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

} // namespace

MessageFramer::State MessageFramer::feed(QByteArrayView bytes)
{
    bytes = bytes.first(std::min(bytes.size(), room()));
    m_taken += bytes.size();
    if (m_state == State::invalid)
        return m_state;
    const qsizetype seen = m_bytes.size();
    m_bytes.append(bytes);
    qsizetype end = m_state == State::complete ? seen : m_bytes.size();
    for (qsizetype i = seen; i < m_bytes.size(); ++i) {
        if (!step(i))
            return fail();
        if (m_at == At::behindObject && m_state == State::reading) {
            m_state = State::complete;
            end = i + 1;
        }
    }
    m_bytes.truncate(end);
    if (m_state == State::reading && room() == 0)
        return fail();
    return m_state;
}

/// Looks at one byte. False when it cannot stand where it does.
bool MessageFramer::step(qsizetype index)
{
    const char c = m_bytes.at(index);
    switch (m_at) {
    case At::header:
        if (c != '\n')
            return index < maxHeaderBytes;
        m_at = At::beforeObject;
        return SocketMessage::isHeader(QByteArrayView(m_bytes).first(index));
    case At::beforeObject:
        if (c != '{')
            return isWhiteSpace(c);
        m_at = At::inObject;
        m_depth = 1;
        return true;
    case At::behindObject:
        return isWhiteSpace(c);
    case At::inEscape:
        m_at = At::inText;
        return true;
    case At::inText:
        if (c == '"')
            m_at = At::inObject;
        else if (c == '\\')
            m_at = At::inEscape;
        return true;
    case At::inObject:
        return stepInObject(c);
    }
    return false;
}

/// Brackets are only counted here, not matched: whether the object is valid is the parser's to say.
bool MessageFramer::stepInObject(char c)
{
    switch (c) {
    case '"':
        m_at = At::inText;
        return true;
    case '{':
    case '[':
        return ++m_depth <= ForeignJson::maxDepth;
    case '}':
    case ']':
        if (--m_depth == 0)
            m_at = At::behindObject;
        return true;
    default:
        return true;
    }
}

MessageFramer::State MessageFramer::fail()
{
    m_bytes = QByteArray();
    m_state = State::invalid;
    return m_state;
}

std::optional<SocketMessage> MessageFramer::message() const
{
    return m_state == State::complete ? SocketMessage::parse(m_bytes) : std::nullopt;
}

} // namespace kestro
