#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads a BMP picture of Windows or OS/2 (1 to 32 bits a pixel, plain, run-length coded or a JPEG inside)
/// scaled to fit `bounds`. Absent when it is broken, cut, or of another kind.
std::optional<DecodedPicture> readBMP(const InputFile& file, PictureBounds bounds);

} // namespace sela
