#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads a WebP picture, or the first frame of an animated one on its canvas, scaled while decoding. False
/// when it is broken or truncated.
bool readWebP(const InputFile& file, PictureTarget& target);

} // namespace sela
