#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace localservice {

[[nodiscard]] std::optional<std::string> contentsOfFile(const std::string& path);
// Replaces the file as a whole: a reader sees the old content or the new one. Only the owner may read it.
[[nodiscard]] bool writeFile(const std::string& path, std::string_view content);

} // namespace localservice
