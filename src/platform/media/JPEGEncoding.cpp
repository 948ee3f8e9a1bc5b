#include "platform/media/JPEGEncoding.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include <turbojpeg.h>

namespace sela {

namespace {

constexpr int largestSide = 65500;

struct CloseCompressor {
    void operator()(void* compressor) const { tjDestroy(compressor); }
};

struct FreeBuffer {
    void operator()(unsigned char* buffer) const { tjFree(buffer); }
};

/// Rows of red, green, blue on white. The colours are premultiplied, so white shows through as what is left.
std::vector<std::uint8_t> flattenedOnWhite(const PixelBuffer& pixels) {
    std::vector<std::uint8_t> flat;
    flat.reserve(pixels.bytes.size() / 4 * 3);
    for (std::size_t i = 0; i < pixels.bytes.size(); i += 4) {
        const int white = 255 - pixels.bytes[i + 3];
        for (std::size_t channel = 0; channel < 3; ++channel)
            flat.push_back(static_cast<std::uint8_t>(std::min(255, pixels.bytes[i + channel] + white)));
    }
    return flat;
}

} // namespace

int jpegQuality(double quality) {
    if (!(quality < 1))
        return 100;
    return std::max(1, static_cast<int>(std::lround(quality * 100)));
}

std::optional<Data> encodeJPEG(const PixelBuffer& pixels, double quality) {
    if (pixels.width < 1 || pixels.height < 1 || pixels.width > largestSide || pixels.height > largestSide)
        return std::nullopt;
    const std::unique_ptr<void, CloseCompressor> compressor(tjInitCompress());
    if (!compressor)
        return std::nullopt;
    const std::vector<std::uint8_t> flat = flattenedOnWhite(pixels);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    // Best qualities keep the colour of fine red lines (screenshots); others halve it as cameras do.
    const int subsampling = quality >= 0.95 ? TJSAMP_444 : TJSAMP_420;
    const int failed = tjCompress2(compressor.get(), flat.data(), pixels.width, 0, pixels.height, TJPF_RGB,
                                   &buffer, &size, subsampling, jpegQuality(quality), TJFLAG_ACCURATEDCT);
    const std::unique_ptr<unsigned char, FreeBuffer> owned(buffer);
    if (failed)
        return std::nullopt;
    const auto* bytes = reinterpret_cast<const std::byte*>(buffer);
    return Data(bytes, bytes + size);
}

} // namespace sela
