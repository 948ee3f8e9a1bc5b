#pragma once

#include "platform/media/UIImage.h"

#include <cstdint>
#include <string>

namespace sela {

/// The path of a file that tests/media/make-samples made.
inline std::string sample(const std::string& name) {
    return std::string(SELA_MEDIA_SAMPLES) + "/" + name;
}

/// The pixel of a picture at a place given in shares of its width and height, as 0xRRGGBBAA.
inline std::uint32_t pixelAt(const PixelBuffer& pixels, double x, double y) {
    const auto column = static_cast<std::size_t>(x * pixels.width);
    const auto row = static_cast<std::size_t>(y * pixels.height);
    const std::uint8_t* pixel =
        pixels.bytes.data() + 4 * (row * static_cast<std::size_t>(pixels.width) + column);
    return std::uint32_t{pixel[0]} << 24 | std::uint32_t{pixel[1]} << 16 | std::uint32_t{pixel[2]} << 8 |
           pixel[3];
}

/// A letter for a colour that the samples are made of: r, g, b, w (white), k (black); "?" for any other.
inline char colourName(std::uint32_t pixel) {
    const auto level = [&](int shift) {
        const std::uint32_t value = pixel >> shift & 0xFF;
        return value > 190 ? 1 : value < 80 ? 0 : -1;
    };
    const int red = level(24);
    const int green = level(16);
    const int blue = level(8);
    if (red < 0 || green < 0 || blue < 0)
        return '?';
    return "kbg?r??w"[red * 4 + green * 2 + blue];
}

/// The colours of a picture's quarters: upper left, upper right, lower left, lower right.
inline std::string quarters(const PixelBuffer& pixels) {
    std::string names;
    for (const double y : {0.25, 0.75})
        for (const double x : {0.25, 0.75})
            names += colourName(pixelAt(pixels, x, y));
    return names;
}

/// The number that a frame of a sample video carries; -1 when it cannot be read.
inline int frameNumber(const PixelBuffer& pixels) {
    int number = 0;
    for (int bit = 0; bit < 16; ++bit) {
        const char colour = colourName(pixelAt(pixels, (bit + 0.5) / 16, 0.25));
        if (colour != 'k' && colour != 'w')
            return -1;
        number |= (colour == 'w' ? 1 : 0) << bit;
    }
    return number;
}

} // namespace sela
