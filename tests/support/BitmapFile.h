#pragma once

#include <cstdint>
#include <string>

namespace sela {

/// The content of a BMP file of one colour, 0xAARRGGBB.
inline std::string bitmapFile(int width, int height, std::uint32_t colour) {
    std::string file = "BM";
    const auto put = [&](std::uint32_t number, int bytes = 4) {
        for (int i = 0; i < bytes; ++i)
            file += static_cast<char>(number >> 8 * i);
    };
    constexpr std::uint32_t masks[] = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    constexpr std::uint32_t withAlphaMask = 6;
    constexpr std::uint32_t start = 14 + 40 + sizeof masks;
    const auto size = static_cast<std::uint32_t>(4 * width * height);
    for (const std::uint32_t number :
         {start + size, 0U, start, 40U, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
          32U << 16 | 1U, withAlphaMask, size, 0U, 0U, 0U, 0U})
        put(number);
    for (const std::uint32_t mask : masks)
        put(mask);
    for (int i = 0; i < width * height; ++i)
        put(colour);
    return file;
}

} // namespace sela
