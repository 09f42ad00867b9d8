#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace localservice {

// Writes compact JSON with its members in the order given. Inside an object every call names its member;
// inside an array the name is empty.
class JsonWriter {
public:
    void beginObject(std::string_view name = {});
    void endObject();
    void beginArray(std::string_view name = {});
    void endArray();
    void member(std::string_view name, std::string_view text);
    void member(std::string_view name, const std::string& text) { member(name, std::string_view(text)); }
    void member(std::string_view name, const char* text) { member(name, std::string_view(text)); }
    void member(std::string_view name, std::int64_t number);
    void null(std::string_view name);

    [[nodiscard]] std::string take() { return std::move(m_text); }

private:
    void begin(std::string_view name);
    void string(std::string_view text);

    std::string m_text;
    bool m_needsComma = false;
};

} // namespace localservice
