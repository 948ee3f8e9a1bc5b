#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the largest picture of pixels in a PICT file, packed or as JPEG, scaled to fit `bounds`.
/// Absent when it is broken or cut, or covers less than half of the whole: lines, texts and pictures of
/// several parts are not drawn.
std::optional<DecodedPicture> readPICT(const InputFile& file, PictureBounds bounds);

} // namespace sela
