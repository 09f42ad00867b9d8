#include "JsonWriter.h"

#include <QJsonArray>
#include <QJsonDocument>

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
    // A document is no bare text, but an array around it is.
    const QString content = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const QByteArray array = QJsonDocument(QJsonArray { content }).toJson(QJsonDocument::Compact);
    m_text.append(array.constData() + 1, static_cast<std::size_t>(array.size() - 2));
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
