#pragma once

#include "mediaservice/pictures/DecodedPicture.h"

namespace sela {

/// The picture's pixels in sRGB. A profile that is absent, broken or made for another kind of colours counts
/// as sRGB (for CMYK: as that of a common press, see `convertPressInks`).
PixelBuffer convertedToSRGB(DecodedPicture picture);

} // namespace sela
