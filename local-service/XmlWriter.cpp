#include "XmlWriter.h"

#include "Text.h"

namespace localservice {

XmlWriter::XmlWriter()
    : m_text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")
{
}

void XmlWriter::indent()
{
    if (!m_open.empty() && !m_hasContent)
        m_text += '\n';
    m_text.append(m_open.size(), ' ');
}

void XmlWriter::beginElement(std::string_view name, std::string_view attributes)
{
    indent();
    m_text += '<';
    m_text += name;
    if (!attributes.empty()) {
        m_text += ' ';
        m_text += attributes;
    }
    m_text += '>';
    m_open.emplace_back(name);
    m_hasContent = false;
}

void XmlWriter::endElement()
{
    const std::string name = std::move(m_open.back());
    m_open.pop_back();
    if (m_hasContent)
        m_text.append(m_open.size(), ' ');
    m_text += "</" + name + ">\n";
    m_hasContent = true;
}

void XmlWriter::element(std::string_view name, std::string_view text, std::string_view attributes)
{
    beginElement(name, attributes);
    m_text += escapedMarkup(text);
    endElement();
}

void XmlWriter::element(std::string_view name, std::int64_t number)
{
    element(name, std::string_view(std::to_string(number)));
}

void XmlWriter::identifier(std::string_view name, std::int64_t number)
{
    element(name, std::string_view(number > 0 ? std::to_string(number) : std::string()));
}

} // namespace localservice
