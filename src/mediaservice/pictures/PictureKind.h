#pragma once

#include "mediaservice/InputFile.h"

namespace sela {

/// The kinds of picture files that are read.
enum class PictureKind { none, jpeg, png, gif, bmp, webp, heif, tiff, pict };

/// The kind of a file with these first bytes.
PictureKind pictureKind(const InputFile& file);

} // namespace sela
