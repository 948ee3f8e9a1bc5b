#include "mediaservice/pictures/Premultiplication.h"

#include <algorithm>
#include <cstddef>

namespace sela {

void premultiply(std::span<std::uint8_t> pixels) {
    for (std::size_t i = 0; i + 4 <= pixels.size(); i += 4) {
        const unsigned alpha = pixels[i + 3];
        if (alpha == 255)
            continue;
        for (std::size_t channel = 0; channel < 3; ++channel)
            pixels[i + channel] = static_cast<std::uint8_t>((pixels[i + channel] * alpha + 127) / 255);
    }
}

void unpremultiply(std::span<std::uint8_t> pixels) {
    for (std::size_t i = 0; i + 4 <= pixels.size(); i += 4) {
        const unsigned alpha = pixels[i + 3];
        if (alpha == 255 || alpha == 0)
            continue;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const unsigned value = (pixels[i + channel] * 255 + alpha / 2) / alpha;
            pixels[i + channel] = static_cast<std::uint8_t>(std::min(value, 255U));
        }
    }
}

} // namespace sela
