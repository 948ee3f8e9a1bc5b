#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads a PNG picture scaled to fit `maximumSide` pixels, row by row; an interlaced one needs all its pixels
/// in memory. Absent when it is broken or cut.
std::optional<DecodedPicture> readPNG(const InputFile& file, int maximumSide);

} // namespace sela
