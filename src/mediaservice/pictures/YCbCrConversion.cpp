#include "mediaservice/pictures/YCbCrConversion.h"

#include <algorithm>
#include <cstddef>

namespace sela {

namespace {

/// The shares of red and blue in luma.
struct Shares {
    float red;
    float blue;
};

Shares sharesOf(int matrix) {
    switch (matrix) {
    case 1:
        return {0.2126F, 0.0722F};
    case 9:
        return {0.2627F, 0.0593F};
    default:
        return {0.299F, 0.114F};
    }
}

std::uint8_t rounded(float value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

} // namespace

void convertYCbCr(std::span<std::uint8_t> pixels, int matrix, bool fullRange) {
    const auto [redShare, blueShare] = sharesOf(matrix);
    const float greenShare = 1 - redShare - blueShare;
    const float lumaScale = fullRange ? 1.0F : 255.0F / 219.0F;
    const float differenceScale = fullRange ? 1.0F : 255.0F / 224.0F;
    const float lumaZero = fullRange ? 0.0F : 16.0F;
    for (std::size_t i = 0; i + 4 <= pixels.size(); i += 4) {
        const float luma = (static_cast<float>(pixels[i]) - lumaZero) * lumaScale;
        const float blue =
            luma + (static_cast<float>(pixels[i + 1]) - 128) * differenceScale * 2 * (1 - blueShare);
        const float red =
            luma + (static_cast<float>(pixels[i + 2]) - 128) * differenceScale * 2 * (1 - redShare);
        pixels[i] = rounded(red);
        pixels[i + 1] = rounded((luma - redShare * red - blueShare * blue) / greenShare);
        pixels[i + 2] = rounded(blue);
    }
}

} // namespace sela
