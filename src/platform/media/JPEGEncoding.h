#pragma once

#include "platform/foundation/Data.h"
#include "platform/media/UIImage.h"

#include <optional>

namespace sela {

/// The encoder's quality, 1 to 100, for one of 0.0 to 1.0; values outside count as the nearer end, and one
/// that is no number as the best.
int jpegQuality(double quality);

/// The pixels as a JPEG file at `quality` 0.0 to 1.0 (values outside count as the nearer end), transparent
/// parts flattened on white. Absent for no pixels or a side above the 65,500 that libjpeg writes.
/// Thread-safe.
std::optional<Data> encodeJPEG(const PixelBuffer& pixels, double quality);

} // namespace sela
