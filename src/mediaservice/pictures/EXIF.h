#pragma once

#include "mediaservice/pictures/Orientation.h"
#include "platform/foundation/Data.h"

namespace sela {

/// The orientation that a block of EXIF data tells; upright when it is broken or tells none. The block may
/// start with "Exif" and two zero bytes, as in JPEG. Thread-safe.
Orientation orientationOfEXIF(DataView block);

} // namespace sela
