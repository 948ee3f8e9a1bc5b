#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/DecodedPicture.h"

#include <optional>

namespace sela {

/// Reads the JPEG picture that starts at `offset` and ends before `end`, scaled while decoding to fit
/// `maximumSide` pixels. Absent when it is broken or cut before its last row (a progressive one: before its
/// last scan).
std::optional<DecodedPicture> readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end,
                                       int maximumSide);

} // namespace sela
