#include "JsonWriter.h"

#include <array>
#include <cstdio>

namespace localservice {

void JsonWriter::begin(std::string_view name)
{
    if (m_needsComma)
        m_text += ',';
    m_needsComma = true;
    if (!name.empty()) {
        string(name);
        m_text += ':';
    }
}

void JsonWriter::string(std::string_view text)
{
    m_text += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            m_text += '\\';
            m_text += c;
        } else if (c == '\n') {
            m_text += "\\n";
        } else if (static_cast<unsigned char>(c) < 0x20) {
            std::array<char, 8> escape {};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
            m_text += escape.data();
        } else {
            m_text += c;
        }
    }
    m_text += '"';
}

void JsonWriter::beginObject(std::string_view name)
{
    begin(name);
    m_text += '{';
    m_needsComma = false;
}

void JsonWriter::endObject()
{
    m_text += '}';
    m_needsComma = true;
}

void JsonWriter::beginArray(std::string_view name)
{
    begin(name);
    m_text += '[';
    m_needsComma = false;
}

void JsonWriter::endArray()
{
    m_text += ']';
    m_needsComma = true;
}

void JsonWriter::member(std::string_view name, std::string_view text)
{
    begin(name);
    string(text);
}

void JsonWriter::member(std::string_view name, std::int64_t number)
{
    begin(name);
    m_text += std::to_string(number);
}

void JsonWriter::null(std::string_view name)
{
    begin(name);
    m_text += "null";
}

} // namespace localservice
