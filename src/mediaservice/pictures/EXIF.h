#pragma once

#include "mediaservice/pictures/Orientation.h"
#include "platform/foundation/Data.h"

namespace sela {

class TIFFDirectory;

/// The orientation that a directory names; upright when it names none.
Orientation orientationOf(const TIFFDirectory& directory);

/// The orientation in a block of EXIF data; upright when the block is broken or has none. The block may start
/// with "Exif" and two zero bytes, as in JPEG. Thread-safe.
Orientation orientationOfEXIF(DataView block);

} // namespace sela
