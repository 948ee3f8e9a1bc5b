#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

#include <optional>

namespace sela {

/// Reads the JPEG picture that starts at `offset` and ends before `end`, scaled while decoding; it lies as
/// `orientation` says, else as its own EXIF does. Of one that is cut off, the rows that are missing are
/// transparent (without ink in CMYK); false when less than a quarter of the rows is there, or it is broken.
bool readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end, PictureTarget& target,
              std::optional<Orientation> orientation = std::nullopt);

} // namespace sela
