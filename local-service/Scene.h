#pragma once

#include <string>
#include <string_view>

namespace localservice {

// The pictures that the community shares are drawn, each known by a name such as “harbour”; empty for an
// unknown name.
[[nodiscard]] std::string drawnScene(std::string_view name);
// Four seconds of waves, an AVI file of PNG frames.
[[nodiscard]] std::string drawnMovie();

} // namespace localservice
