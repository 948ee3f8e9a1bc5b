#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the preview inside a DNG (or another TIFF) file, scaled to fit `bounds`: the smallest
/// one that is large enough, else the largest. Previews are JPEG or plain RGB. Absent when there is none, or
/// it is broken or cut.
std::optional<DecodedPicture> readDNGPreview(const InputFile& file, PictureBounds bounds);

} // namespace sela
