#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads a BMP picture (1 to 32 bits a pixel, not run-length coded) scaled to fit `maximumSide` pixels.
/// Absent when it is broken, cut, or of another kind.
std::optional<DecodedPicture> readBMP(const InputFile& file, int maximumSide);

} // namespace sela
