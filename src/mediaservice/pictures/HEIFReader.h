#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the main picture of a HEIF file (HEVC or AV1 inside) scaled to fit `maximumSide` pixels: its
/// embedded thumbnail when that is large enough, else the picture itself. Turned and cropped as the file
/// says, so always upright. Absent when it is broken or cut.
std::optional<DecodedPicture> readHEIF(const InputFile& file, int maximumSide);

} // namespace sela
