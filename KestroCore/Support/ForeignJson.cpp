#include "KestroCore/Support/ForeignJson.h"

#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace kestro::ForeignJson {

using nlohmann::json;

namespace {

enum class Numbers { asValues, asText };

/// Builds the document while the parser reads. Each call returns whether to read on.
class Builder final : public nlohmann::json_sax<json> {
public:
    explicit Builder(Numbers numbers)
        : m_numbers(numbers)
    {
    }

    json take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool number_integer(number_integer_t value) override
    {
        // The parser comes here for a leading minus alone, so zero was "-0".
        return m_numbers == Numbers::asText ? addNumber(value == 0 ? "-0" : std::to_string(value)) : add(value);
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        return m_numbers == Numbers::asText ? addNumber(std::to_string(value)) : add(value);
    }
    bool number_float(number_float_t value, const string_t& text) override
    {
        return m_numbers == Numbers::asText ? addNumber(text) : add(value);
    }

    bool start_object(std::size_t) override { return open(json::object()); }
    bool start_array(std::size_t) override { return open(json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override
    {
        m_key = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

private:
    json* place(json&& value)
    {
        if (m_open.empty()) {
            m_root = std::move(value);
            return &m_root;
        }
        json& parent = *m_open.back();
        if (parent.is_array())
            return &parent.get_ref<json::array_t&>().emplace_back(std::move(value));
        json& slot = parent[m_key];
        slot = std::move(value);
        return &slot;
    }
    bool add(json&& value)
    {
        place(std::move(value));
        return !m_open.empty(); // a top level other than an object ends the reading
    }
    bool addNumber(std::string text)
    {
        // The parser has put the locale's decimal point into the text.
        for (char& c : text) {
            if (!std::strchr("0123456789+-eE", c))
                c = '.';
        }
        return add(json::binary({ text.begin(), text.end() }));
    }
    bool open(json&& container)
    {
        if (m_open.size() >= maxDepth || (m_open.empty() && !container.is_object()))
            return false;
        m_open.push_back(place(std::move(container)));
        return true;
    }
    bool close()
    {
        m_open.pop_back();
        return true;
    }

    Numbers m_numbers;
    json m_root;
    std::vector<json*> m_open; // the containers being filled: only the last one grows, so the pointers hold
    std::string m_key;
};

std::optional<json> parse(QByteArrayView bytes, Numbers numbers)
{
    // The parser takes a NUL for the end of its input and would not see what follows.
    if (bytes.contains('\0'))
        return std::nullopt;
    Builder builder(numbers);
    if (!json::sax_parse(bytes.begin(), bytes.end(), &builder))
        return std::nullopt;
    return builder.take();
}

class Printer {
public:
    void value(const json& v, int depth)
    {
        if (v.is_object() && !v.empty())
            object(v, depth);
        else if (v.is_array() && !v.empty())
            array(v, depth);
        else if (v.is_binary())
            m_out.append(v.get_binary().begin(), v.get_binary().end());
        else
            m_out += v.dump(-1, ' ', false, json::error_handler_t::replace);
    }
    QByteArray take() { return QByteArray::fromStdString(m_out + '\n'); }

private:
    void object(const json& v, int depth)
    {
        char separator = '{';
        for (const auto& [name, member] : v.items()) {
            m_out += separator;
            newLine(depth + 1);
            value(json(name), 0);
            m_out += ": ";
            value(member, depth + 1);
            separator = ',';
        }
        newLine(depth);
        m_out += '}';
    }
    void array(const json& v, int depth)
    {
        char separator = '[';
        for (const json& element : v) {
            m_out += separator;
            newLine(depth + 1);
            value(element, depth + 1);
            separator = ',';
        }
        newLine(depth);
        m_out += ']';
    }
    void newLine(int depth) { m_out.append(1, '\n').append(static_cast<std::size_t>(depth) * 2, ' '); }

    std::string m_out;
};

} // namespace

std::optional<json> parseObject(QByteArrayView bytes) { return parse(bytes, Numbers::asValues); }

std::optional<json> parseForEditing(QByteArrayView bytes) { return parse(bytes, Numbers::asText); }

QByteArray print(const json& document)
{
    Printer printer;
    printer.value(document, 0);
    return printer.take();
}

} // namespace kestro::ForeignJson
