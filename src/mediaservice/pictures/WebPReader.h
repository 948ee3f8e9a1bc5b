#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads a WebP picture, or the first frame of an animated one on its canvas, scaled while decoding to fit
/// `bounds`. Absent when it is broken or cut.
std::optional<DecodedPicture> readWebP(const InputFile& file, PictureBounds bounds);

} // namespace sela
