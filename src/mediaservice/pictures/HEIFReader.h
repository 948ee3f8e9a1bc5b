#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the main picture of a HEIF file (HEVC or AV1 inside) scaled to fit `bounds`: its
/// embedded thumbnail when that is large enough and has the picture's shape, else the picture itself, else
/// (when it has more pixels than are decoded, or is broken) the largest such thumbnail. Turned and cropped as
/// the file says, so always upright. Absent when nothing of it can be decoded.
std::optional<DecodedPicture> readHEIF(const InputFile& file, PictureBounds bounds);

} // namespace sela
