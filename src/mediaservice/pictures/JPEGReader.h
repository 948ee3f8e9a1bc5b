#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the JPEG picture that starts at `offset` and ends before `end`, scaled while decoding to fit
/// `bounds`. Of one that is cut off, the rows that are missing are transparent (without ink in
/// CMYK); absent when less than a quarter of the rows is there, or it is broken.
std::optional<DecodedPicture> readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end,
                                       PictureBounds bounds);

} // namespace sela
