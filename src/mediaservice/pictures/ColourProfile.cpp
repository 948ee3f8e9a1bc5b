#include "mediaservice/pictures/ColourProfile.h"

#include "mediaservice/pictures/Premultiplication.h"
#include "mediaservice/pictures/PressInks.h"

#include <memory>

#include <lcms2.h>

namespace sela {

namespace {

using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Transform = std::unique_ptr<void, decltype(&cmsDeleteTransform)>;

/// The transform from the picture's colours to red, green, blue and an unchanged fourth byte; null when its
/// profile does not fit.
Transform transformToSRGB(const DecodedPicture& picture) {
    const Profile source(
        cmsOpenProfileFromMem(picture.profile.data(), static_cast<cmsUInt32Number>(picture.profile.size())),
        &cmsCloseProfile);
    const Profile target(cmsCreate_sRGBProfile(), &cmsCloseProfile);
    if (!source || !target)
        return {nullptr, &cmsDeleteTransform};
    const cmsColorSpaceSignature space = cmsGetColorSpace(source.get());
    cmsUInt32Number format = 0;
    if (picture.colours == DecodedPicture::Colours::cmyk && space == cmsSigCmykData)
        format = TYPE_CMYK_8;
    else if (picture.colours != DecodedPicture::Colours::cmyk && space == cmsSigRgbData)
        format = TYPE_RGBA_8;
    else if (picture.colours == DecodedPicture::Colours::gray && space == cmsSigGrayData)
        format = COLORSPACE_SH(PT_GRAY) | EXTRA_SH(3) | CHANNELS_SH(1) | BYTES_SH(1);
    else
        return {nullptr, &cmsDeleteTransform};
    return {cmsCreateTransform(source.get(), format, target.get(), TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC,
                               cmsFLAGS_BLACKPOINTCOMPENSATION),
            &cmsDeleteTransform};
}

} // namespace

PixelBuffer convertedToSRGB(DecodedPicture picture) {
    PixelBuffer& pixels = picture.pixels;
    const bool inks = picture.colours == DecodedPicture::Colours::cmyk;
    const Transform transform =
        picture.profile.empty() ? Transform(nullptr, &cmsDeleteTransform) : transformToSRGB(picture);
    if (!transform) {
        if (inks)
            convertPressInks(pixels);
        return std::move(pixels);
    }
    if (!inks)
        unpremultiply(pixels.bytes);
    // In place, which equal pixel sizes allow; alpha is not touched.
    cmsDoTransform(transform.get(), pixels.bytes.data(), pixels.bytes.data(),
                   static_cast<cmsUInt32Number>(pixels.bytes.size() / 4));
    if (inks)
        for (std::size_t i = 3; i < pixels.bytes.size(); i += 4)
            pixels.bytes[i] = 255;
    else
        premultiply(pixels.bytes);
    return std::move(pixels);
}

} // namespace sela
