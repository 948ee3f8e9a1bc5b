#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads a PNG picture scaled to fit `bounds`, row by row; an interlaced one needs all its pixels
/// in memory. Absent when it is broken or cut.
std::optional<DecodedPicture> readPNG(const InputFile& file, PictureBounds bounds);

} // namespace sela
