#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

#include <optional>

namespace sela {

/// The picture in a file, whatever the file is called: upright, in sRGB, with no side longer than `bounds`;
/// of an animation its first frame. Absent when the file is of an unsupported kind, broken or truncated.
std::optional<PixelBuffer> decodePicture(const InputFile& file, PictureBounds bounds,
                                         PictureTarget::Wants wants = PictureTarget::Wants::whatThereIs);

/// Passes the rows of that picture to `target`; false when the file is of an unsupported kind, broken or
/// truncated.
bool readPicture(const InputFile& file, PictureTarget& target);

} // namespace sela
