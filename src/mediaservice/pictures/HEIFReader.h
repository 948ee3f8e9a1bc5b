#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

namespace sela {

/// Reads the main picture of a HEIF file (HEVC or AV1 inside): its embedded thumbnail when that is large
/// enough and has the picture's shape, else the picture itself, else (when it has more pixels than are
/// decoded, or is broken) the largest such thumbnail. Rotated and cropped as the file says, so always
/// upright. False when nothing of it can be decoded.
bool readHEIF(const InputFile& file, PictureTarget& target);

} // namespace sela
