#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads the first frame of a GIF picture on its canvas. False when it is broken or truncated.
bool readGIF(const InputFile& file, PictureTarget& target);

} // namespace sela
