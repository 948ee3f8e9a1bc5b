#pragma once

#include "mediaservice/pictures/PictureTarget.h"
#include "mediaservice/pictures/ToneMapping.h"
#include "platform/foundation/Data.h"

namespace sela {

/// What the four bytes of a pixel are, as a file holds it.
enum class PixelColours {
    rgb,  ///< red, green, blue, alpha, the colours premultiplied
    gray, ///< the same with red, green and blue equal; the profile is one of gray
    cmyk, ///< cyan, magenta, yellow, black; 255 is full ink
};

/// The largest ICC profile that is used, in bytes. Those of presses reach two megabytes.
inline constexpr std::size_t largestProfile = 4 << 20;

/// The conversion of pixels of those colours and that ICC profile to sRGB. A profile that is absent, broken
/// or of another colour space counts as sRGB (for CMYK: as that of a common press, see `convertPressInks`).
PixelConversion conversionToSRGB(PixelColours colours, const Data& profile);

/// The conversion of red, green, blue, alpha of a high dynamic range, the colours premultiplied, to sRGB.
PixelConversion conversionToSRGB(const HDRColours& colours);

} // namespace sela
