#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the first frame of a GIF picture on its canvas, scaled to fit `bounds`. Absent when it
/// is broken or cut.
std::optional<DecodedPicture> readGIF(const InputFile& file, PictureBounds bounds);

} // namespace sela
