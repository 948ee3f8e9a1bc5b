#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/PictureTarget.h"

#include <optional>

namespace sela {

/// Reads the JPEG picture that starts at `offset` and ends before `end`, scaled while decoding; its
/// orientation is `orientation`, else that of its own EXIF. Of a truncated one, the missing rows are
/// transparent (without ink in CMYK); false when less than a quarter of the rows is there, or it is broken.
bool readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end, PictureTarget& target,
              std::optional<Orientation> orientation = std::nullopt);

} // namespace sela
