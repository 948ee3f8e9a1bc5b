#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads a BMP picture of Windows or OS/2 (1 to 32 bits a pixel, plain, run-length coded or a JPEG inside).
/// False when it is broken, truncated, or of another kind.
bool readBMP(const InputFile& file, PictureTarget& target);

} // namespace sela
