#pragma once

#include "platform/media/UIImage.h"

#include <cstdint>

namespace sela {

/// The orientation of a picture's stored rows and columns, with EXIF's numbers: 1 upright, 2 mirrored, 3
/// upside down, 4 mirrored upside down, 5 to 8 with rows and columns exchanged (5 along the main diagonal, 6
/// to be turned clockwise, 7 along the other diagonal, 8 to be turned counterclockwise).
enum class Orientation : std::uint8_t {
    up = 1,
    upMirrored,
    down,
    downMirrored,
    leftMirrored,
    right,
    rightMirrored,
    left,
};

/// The orientation of that number; upright for other numbers.
Orientation orientationOfNumber(std::uint32_t number);

/// The picture rotated and mirrored so that it is upright.
PixelBuffer upright(PixelBuffer pixels, Orientation orientation);

} // namespace sela
