#pragma once

/// An RGBA colour, each component from 0 to 1. The drawing layers convert it to their own type.
struct KRColor {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    static constexpr KRColor rgba(float r, float g, float b, float a) { return { r, g, b, a }; }
    bool operator==(const KRColor&) const = default;
};
