#include "mediaservice/pictures/Orientation.h"

#include <cstddef>
#include <cstring>

namespace sela {

namespace {

/// The start and the steps, in pixels, of the walk through the stored pixels that writes the result from left
/// to right and from top to bottom.
struct Walk {
    std::ptrdiff_t start;
    std::ptrdiff_t alongRow;
    std::ptrdiff_t alongColumn;
};

Walk walk(Orientation orientation, std::ptrdiff_t width, std::ptrdiff_t height) {
    const std::ptrdiff_t topRight = width - 1;
    const std::ptrdiff_t bottomLeft = width * (height - 1);
    const std::ptrdiff_t bottomRight = width * height - 1;
    switch (orientation) {
    case Orientation::up:
        return {0, 1, width};
    case Orientation::upMirrored:
        return {topRight, -1, width};
    case Orientation::down:
        return {bottomRight, -1, -width};
    case Orientation::downMirrored:
        return {bottomLeft, 1, -width};
    case Orientation::leftMirrored:
        return {0, width, 1};
    case Orientation::right:
        return {bottomLeft, -width, 1};
    case Orientation::rightMirrored:
        return {bottomRight, -width, -1};
    case Orientation::left:
        return {topRight, width, -1};
    }
    return {0, 1, width};
}

} // namespace

Orientation orientationOfNumber(std::uint32_t number) {
    return number >= 1 && number <= 8 ? static_cast<Orientation>(number) : Orientation::up;
}

PixelBuffer upright(PixelBuffer pixels, Orientation orientation) {
    if (orientation == Orientation::up || pixels.bytes.empty())
        return pixels;
    const bool exchanged = orientation >= Orientation::leftMirrored;
    PixelBuffer turned{
        exchanged ? pixels.height : pixels.width, exchanged ? pixels.width : pixels.height, {}};
    turned.bytes.resize(pixels.bytes.size());
    const Walk steps = walk(orientation, pixels.width, pixels.height);
    std::uint8_t* out = turned.bytes.data();
    for (int y = 0; y < turned.height; ++y) {
        std::ptrdiff_t from = steps.start + y * steps.alongColumn;
        for (int x = 0; x < turned.width; ++x, from += steps.alongRow, out += 4)
            std::memcpy(out, pixels.bytes.data() + 4 * from, 4);
    }
    return turned;
}

} // namespace sela
