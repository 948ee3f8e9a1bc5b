#include "mediaservice/pictures/PressInks.h"

#include <array>
#include <cstddef>

namespace sela {

namespace {

using Colour = std::array<std::uint8_t, 3>;

// What full inks look like over one another on coated paper (SWOP), in sRGB. Cyan counts 1 in the index,
// magenta 2, yellow 4, black 8.
constexpr std::array<Colour, 16> overprints{
    Colour{255, 255, 255}, Colour{0, 174, 239}, Colour{236, 0, 140}, Colour{46, 48, 146},
    Colour{255, 242, 0},   Colour{0, 166, 80},  Colour{237, 28, 36}, Colour{54, 54, 57},
    Colour{35, 31, 32},    Colour{0, 14, 35},   Colour{35, 0, 0},    Colour{0, 0, 1},
    Colour{27, 26, 0},     Colour{0, 18, 0},    Colour{34, 0, 0},    Colour{0, 0, 0},
};

} // namespace

void convertPressInks(std::span<std::uint8_t> pixels) {
    for (std::size_t i = 0; i + 4 <= pixels.size(); i += 4) {
        // The shares of the paper that each overprint covers when dots of ink fall independently
        // (Neugebauer).
        std::array<float, 16> shares{1};
        std::size_t count = 1;
        for (std::size_t ink = 0; ink < 4; ++ink, count *= 2) {
            const float covered = static_cast<float>(pixels[i + ink]) / 255;
            for (std::size_t each = 0; each < count; ++each) {
                shares[count + each] = shares[each] * covered;
                shares[each] *= 1 - covered;
            }
        }
        for (std::size_t channel = 0; channel < 3; ++channel) {
            float level = 0.5F;
            for (std::size_t each = 0; each < overprints.size(); ++each)
                level += shares[each] * static_cast<float>(overprints[each][channel]);
            pixels[i + channel] = static_cast<std::uint8_t>(level);
        }
        pixels[i + 3] = 255;
    }
}

} // namespace sela
