#include "KestroCore/Agents/SocketMessageFields.h"

#include "KestroCore/Support/ForeignJson.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace kestro {

namespace {

void reset(const JsonField& field)
{
    struct Reset {
        void operator()(std::optional<QString>* text) const { text->reset(); }
        void operator()(std::optional<double>* number) const { number->reset(); }
        void operator()(FirstText* list) const { list->text.clear(); }
        void operator()(const JsonFields& inner) const { std::ranges::for_each(inner, reset); }
    };
    std::visit(Reset{}, field.place);
}

/// Valid UTF-8 stays valid.
QString cutText(std::string_view text)
{
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t size = std::min(text.size(), JsonField::mostTextBytes);
    while (size > 0 && size < text.size() && continues(text[size]))
        --size;
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(size));
}

class FieldReader final : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit FieldReader(const JsonFields& fields)
        : m_root(fields)
    {
    }

    bool null() override { return other(); }
    bool boolean(bool) override { return other(); }
    bool number_integer(std::int64_t value) override { return number(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return number(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) override { return number(value); }
    bool binary(binary_t&) override { return false; }
    bool parse_error(size_t, const std::string&, const nlohmann::json::exception&) override { return false; }

    bool string(std::string& value) override
    {
        if (inList()) {
            if (m_listLength++ == 0)
                m_list->text = cutText(value);
        } else if (const auto* field = std::exchange(m_wanted, nullptr)) {
            if (const auto* text = std::get_if<std::optional<QString>*>(&field->place))
                **text = cutText(value);
        }
        return m_depth > 0;
    }

    bool start_object(size_t) override
    {
        spoilList();
        if (m_depth == 0)
            m_open.push_back(&m_root);
        else if (const auto* field = std::exchange(m_wanted, nullptr)) {
            if (const auto* inner = std::get_if<JsonFields>(&field->place))
                m_open.push_back(inner);
        }
        return deeper();
    }

    bool key(std::string& name) override
    {
        // Only when every enclosing value is itself a wanted object are there as many open as the depth says.
        if (std::cmp_not_equal(m_open.size(), m_depth))
            return true;
        const auto field = std::ranges::find(*m_open.back(), std::string_view(name), &JsonField::key);
        if (field != m_open.back()->end()) {
            m_wanted = &*field;
            reset(*field);
        }
        return true;
    }

    bool end_object() override
    {
        if (std::cmp_equal(m_open.size(), m_depth))
            m_open.pop_back();
        --m_depth;
        return true;
    }

    bool start_array(size_t) override
    {
        spoilList();
        if (m_depth == 0)
            return false;
        if (const auto* field = std::exchange(m_wanted, nullptr)) {
            if (const auto* list = std::get_if<FirstText*>(&field->place)) {
                m_list = *list;
                m_listDepth = m_depth + 1;
                m_listLength = 0;
            }
        }
        return deeper();
    }

    bool end_array() override
    {
        if (m_depth-- == m_listDepth)
            m_list = nullptr;
        return true;
    }

private:
    bool deeper() { return ++m_depth <= ForeignJson::maxDepth; }
    bool inList() const { return m_list && m_depth == m_listDepth; }

    /// One element that is no text makes the whole array one of another type.
    void spoilList()
    {
        if (inList())
            std::exchange(m_list, nullptr)->text.clear();
    }

    bool number(double value)
    {
        spoilList();
        if (const auto* field = std::exchange(m_wanted, nullptr)) {
            if (const auto* place = std::get_if<std::optional<double>*>(&field->place))
                **place = value;
        }
        return m_depth > 0;
    }

    bool other()
    {
        spoilList();
        m_wanted = nullptr;
        return m_depth > 0;
    }

    const JsonFields& m_root;
    std::vector<const JsonFields*> m_open;
    const JsonField* m_wanted = nullptr; // the key just read; its value is next
    FirstText* m_list = nullptr;
    int m_listDepth = 0;
    size_t m_listLength = 0;
    int m_depth = 0;
};

} // namespace

bool readJsonFields(QByteArrayView bytes, const JsonFields& fields)
{
    // The parser takes a zero byte for the end of its input, and skips a byte-order mark that no agent sends.
    if (bytes.contains('\0') || bytes.startsWith('\xEF'))
        return false;
    FieldReader reader(fields);
    return nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &reader);
}

} // namespace kestro
