#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads the preview inside a DNG (or another TIFF) file, into `target`: the smallest one that is large
/// enough, else the largest. Previews are JPEG or plain RGB. False when there is none, or it is broken or
/// truncated.
bool readDNGPreview(const InputFile& file, PictureTarget& target);

} // namespace sela
