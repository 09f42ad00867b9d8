#pragma once

#include <cstdint>
#include <string>

namespace localservice {

enum class HairStyle { None, Short, Side, Long, Curly, Bun, Scarf, Cap, Spiky };

enum PortraitExtra : unsigned {
    NoExtra = 0,
    Glasses = 1,
    Beard = 2,
    Earrings = 4,
    Moustache = 8,
    Blush = 16,
};

// What somebody looks like, in colours 0xRRGGBB.
struct Portrait {
    std::uint32_t sky = 0;
    std::uint32_t ground = 0;
    std::uint32_t skin = 0;
    std::uint32_t hair = 0;
    std::uint32_t clothes = 0;
    HairStyle style = HairStyle::Short;
    unsigned extras = NoExtra;
};

// Pictures as PNG files. A portrait is square; a silhouette stands for somebody who chose none.
[[nodiscard]] std::string drawnPortrait(const Portrait& portrait, int size);
[[nodiscard]] std::string drawnSilhouette(int size);

} // namespace localservice
