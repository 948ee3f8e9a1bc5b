#include "mediaservice/pictures/ColourProfile.h"

#include "mediaservice/pictures/Premultiplication.h"
#include "mediaservice/pictures/PressInks.h"

#include <memory>

#include <lcms2.h>

namespace sela {

namespace {

using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Transform = std::shared_ptr<void>;

/// The transform from a file's colours to red, green, blue and an unchanged fourth byte; null when the
/// profile does not fit.
Transform transformToSRGB(PixelColours colours, const Data& bytes) {
    if (bytes.empty())
        return nullptr;
    const Profile source(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())),
                         &cmsCloseProfile);
    const Profile target(cmsCreate_sRGBProfile(), &cmsCloseProfile);
    if (!source || !target)
        return nullptr;
    const cmsColorSpaceSignature space = cmsGetColorSpace(source.get());
    cmsUInt32Number format = 0;
    if (colours == PixelColours::cmyk && space == cmsSigCmykData)
        format = TYPE_CMYK_8;
    else if (colours != PixelColours::cmyk && space == cmsSigRgbData)
        format = TYPE_RGBA_8;
    else if (colours == PixelColours::gray && space == cmsSigGrayData)
        format = COLORSPACE_SH(PT_GRAY) | EXTRA_SH(3) | CHANNELS_SH(1) | BYTES_SH(1);
    else
        return nullptr;
    const cmsHTRANSFORM made =
        cmsCreateTransform(source.get(), format, target.get(), TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC,
                           cmsFLAGS_BLACKPOINTCOMPENSATION);
    return made ? Transform(made, &cmsDeleteTransform) : nullptr;
}

/// In place, which equal pixel sizes allow; alpha is not touched.
void apply(const Transform& transform, std::span<std::uint8_t> pixels) {
    cmsDoTransform(transform.get(), pixels.data(), pixels.data(),
                   static_cast<cmsUInt32Number>(pixels.size() / 4));
}

} // namespace

PixelConversion conversionToSRGB(PixelColours colours, const Data& profile) {
    const Transform transform = transformToSRGB(colours, profile);
    const bool inks = colours == PixelColours::cmyk;
    if (!transform)
        return inks ? PixelConversion(convertPressInks) : PixelConversion();
    if (inks)
        return [transform](std::span<std::uint8_t> pixels) {
            apply(transform, pixels);
            for (std::size_t i = 3; i < pixels.size(); i += 4)
                pixels[i] = 255;
        };
    return [transform](std::span<std::uint8_t> pixels) {
        unpremultiply(pixels);
        apply(transform, pixels);
        premultiply(pixels);
    };
}

PixelConversion conversionToSRGB(const HDRColours& colours) {
    return [mapping = ToneMapping(colours)](std::span<std::uint8_t> pixels) {
        unpremultiply(pixels);
        mapping.convert(pixels);
        premultiply(pixels);
    };
}

} // namespace sela
