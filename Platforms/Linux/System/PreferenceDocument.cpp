#include "PreferenceDocument.h"

#include "PreferenceValue.h"

#include "KestroCore/Support/ForeignJson.h"

#include <nlohmann/json.hpp>

namespace kestro {
namespace {

using nlohmann::json;

QByteArray printed(const json& value) { return QByteArray::fromStdString(value.dump()); }

// Cuts text that is known to be one JSON object at its outermost commas and colons.
class MemberCutter {
public:
    explicit MemberCutter(QByteArrayView text)
        : m_text(text)
        , m_at(text.indexOf('{') + 1)
    {
    }

    bool atEnd() { return next() == '}' || next() == '\0'; }

    // The text before the next outermost `:`, or `,` or `}`, without the blanks round it. Skips a `:` or `,` at its
    // end.
    QByteArray piece(bool key)
    {
        const qsizetype from = m_at;
        int depth = 0;
        for (; m_at < m_text.size(); ++m_at) {
            const char c = m_text[m_at];
            if (c == '"')
                skipString();
            else if (c == '{' || c == '[')
                ++depth;
            else if (depth == 0 && (c == (key ? ':' : ',') || c == '}'))
                break;
            else if (c == '}' || c == ']')
                --depth;
        }
        QByteArray found = m_text.sliced(from, m_at - from).trimmed().toByteArray();
        if (m_at < m_text.size() && m_text[m_at] != '}')
            ++m_at;
        return found;
    }

private:
    char next()
    {
        while (m_at < m_text.size() && QByteArrayView(" \t\r\n").contains(m_text[m_at]))
            ++m_at;
        return m_at < m_text.size() ? m_text[m_at] : '\0';
    }

    // Leaves the position at the closing quote.
    void skipString()
    {
        for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
            if (m_text[m_at] == '\\')
                ++m_at;
        }
    }

    QByteArrayView m_text;
    qsizetype m_at;
};

} // namespace

std::optional<PreferenceDocument> PreferenceDocument::parse(const QByteArray& text)
{
    const auto object = ForeignJson::parseObject(text);
    PreferenceDocument document;
    if (!object || !document.split(text))
        return std::nullopt;
    for (const auto& [key, value] : object->items()) {
        if (!value.is_null())
            document.m_values.insert(QString::fromStdString(key), PreferenceValue::fromJson(value));
    }
    return document;
}

bool PreferenceDocument::split(QByteArrayView text)
{
    MemberCutter cutter(text);
    while (!cutter.atEnd()) {
        Member member;
        member.keyText = cutter.piece(true);
        member.valueText = cutter.piece(false);
        const json key = json::parse(member.keyText.begin(), member.keyText.end(), nullptr, false);
        if (!key.is_string() || member.valueText.isEmpty())
            return false;
        member.key = QString::fromStdString(key.get_ref<const std::string&>());
        m_members.push_back(std::move(member));
    }
    return true;
}

bool PreferenceDocument::set(const QString& key, const QVariant& value)
{
    if (PreferenceValue::same(m_values.value(key), value))
        return false;
    const auto named = [&](const Member& member) { return member.key == key; };
    if (!value.isValid()) {
        std::erase_if(m_members, named);
        m_values.remove(key);
        return true;
    }
    auto member = std::find_if(m_members.begin(), m_members.end(), named);
    if (member == m_members.end())
        member = m_members.insert(member, Member{ key, printed(json(key.toStdString())), {} });
    member->valueText = printed(PreferenceValue::toJson(value).value_or(json()));
    // A key that stands twice in the file counts with its last value.
    m_members.erase(std::remove_if(std::next(member), m_members.end(), named), m_members.end());
    m_values.insert(key, value);
    return true;
}

QByteArray PreferenceDocument::text() const
{
    if (m_members.empty())
        return "{}\n";
    QByteArray text = "{\n";
    for (const Member& member : m_members)
        text += "  " + member.keyText + ": " + member.valueText + (&member == &m_members.back() ? "\n" : ",\n");
    return text + "}\n";
}

} // namespace kestro
