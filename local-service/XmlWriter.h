#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace localservice {

// Writes an indented XML document into a text, one blank per level, as the sites of this interface do.
class XmlWriter {
public:
    XmlWriter();

    void beginElement(std::string_view name, std::string_view attributes = {});
    void endElement();
    // An absent value is an empty element, never a missing one.
    void element(std::string_view name, std::string_view text, std::string_view attributes = {});
    void element(std::string_view name, const std::string& text) { element(name, std::string_view(text)); }
    void element(std::string_view name, const char* text) { element(name, std::string_view(text)); }
    void element(std::string_view name, std::int64_t number);
    void element(std::string_view name, bool value) { element(name, value ? "true" : "false"); }
    // 0 stands for “none”.
    void identifier(std::string_view name, std::int64_t number);

    [[nodiscard]] std::string take() { return std::move(m_text); }

private:
    void indent();

    std::string m_text;
    std::vector<std::string> m_open;
    bool m_hasContent = false;
};

} // namespace localservice
