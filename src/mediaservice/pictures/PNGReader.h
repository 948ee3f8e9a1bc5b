#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads a PNG picture row by row; an interlaced one needs all its pixels in memory. False when it is broken
/// or truncated.
bool readPNG(const InputFile& file, PictureTarget& target);

} // namespace sela
