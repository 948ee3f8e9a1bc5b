#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads the largest picture of pixels in a PICT file, packed or as JPEG. False when it is broken or
/// truncated, or covers less than half of the whole: lines, texts and pictures of several parts are not
/// drawn.
bool readPICT(const InputFile& file, PictureTarget& target);

} // namespace sela
