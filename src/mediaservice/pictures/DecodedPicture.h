#pragma once

#include "mediaservice/pictures/Orientation.h"
#include "platform/foundation/Data.h"
#include "platform/media/UIImage.h"

namespace sela {

/// A picture as its file holds it, but scaled down: neither turned upright nor brought to sRGB.
struct DecodedPicture {
    enum class Colours {
        rgb,  ///< red, green, blue, alpha, the colours premultiplied
        gray, ///< the same with red, green and blue equal; the profile is one of gray
        cmyk, ///< cyan, magenta, yellow, black; 255 is full ink
    };

    PixelBuffer pixels;
    Colours colours = Colours::rgb;
    Data profile; ///< the ICC profile of the colours; empty when the file has none
    Orientation orientation = Orientation::up;
};

/// The largest ICC profile that is looked at, in bytes. Those of presses reach two megabytes.
inline constexpr std::size_t largestProfile = 4 << 20;

} // namespace sela
