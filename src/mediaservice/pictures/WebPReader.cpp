#include "mediaservice/pictures/WebPReader.h"

#include "mediaservice/pictures/ColourProfile.h"
#include "mediaservice/pictures/EXIF.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <webp/decode.h>
#include <webp/demux.h>

namespace sela {

namespace {

// The decoder needs the file in memory; 48 megapixels of lossless data stay below this.
constexpr std::int64_t largestFile = 256 << 20;

struct Free {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};

Data chunk(const WebPDemuxer* demuxer, const char* name) {
    WebPChunkIterator found;
    Data content;
    if (WebPDemuxGetChunk(demuxer, name, 1, &found)) {
        const auto* begin = reinterpret_cast<const std::byte*>(found.chunk.bytes);
        content.assign(begin, begin + found.chunk.size);
    }
    WebPDemuxReleaseChunkIterator(&found);
    return content;
}

/// A rectangle in pixels of the canvas.
struct Rectangle {
    int x, y, width, height;
};

/// Decodes one frame into its place on the canvas, scaled to the place's size.
bool decodeFrame(const WebPData& frame, PixelBuffer& canvas, const Rectangle& place) {
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return false;
    config.options.use_scaling = 1;
    config.options.scaled_width = place.width;
    config.options.scaled_height = place.height;
    config.options.use_threads = 1;
    config.output.colorspace = MODE_rgbA;
    config.output.is_external_memory = 1;
    const std::size_t stride = std::size_t{4} * static_cast<std::size_t>(canvas.width);
    const std::size_t start =
        stride * static_cast<std::size_t>(place.y) + std::size_t{4} * static_cast<std::size_t>(place.x);
    config.output.u.RGBA.rgba = canvas.bytes.data() + start;
    config.output.u.RGBA.stride = static_cast<int>(stride);
    config.output.u.RGBA.size = canvas.bytes.size() - start;
    const bool decoded = WebPDecode(frame.bytes, frame.size, &config) == VP8_STATUS_OK;
    WebPFreeDecBuffer(&config.output);
    return decoded;
}

/// Where a frame lies on a canvas that was scaled from `source` to `target`.
Rectangle scaledPlace(const WebPIterator& frame, PictureSize source, PictureSize target) {
    const auto horizontal = [&](int x) {
        return static_cast<int>(std::int64_t{x} * target.width / source.width);
    };
    const auto vertical = [&](int y) {
        return static_cast<int>(std::int64_t{y} * target.height / source.height);
    };
    const int x = std::min(horizontal(frame.x_offset), target.width - 1);
    const int y = std::min(vertical(frame.y_offset), target.height - 1);
    return {x, y, std::clamp(horizontal(frame.x_offset + frame.width) - x, 1, target.width - x),
            std::clamp(vertical(frame.y_offset + frame.height) - y, 1, target.height - y)};
}

} // namespace

bool readWebP(const InputFile& file, PictureTarget& target) {
    const auto content = file.part(0, file.size(), largestFile);
    if (!content)
        return false;
    const WebPData data{reinterpret_cast<const std::uint8_t*>(content->data()), content->size()};
    // A truncated file cannot be parsed completely.
    const std::unique_ptr<WebPDemuxer, Free> demuxer(WebPDemux(&data));
    WebPIterator frame;
    if (!demuxer || !WebPDemuxGetFrame(demuxer.get(), 1, &frame))
        return false;
    const std::unique_ptr<WebPIterator, decltype(&WebPDemuxReleaseIterator)> owned(&frame,
                                                                                   &WebPDemuxReleaseIterator);
    const PictureSize size{static_cast<int>(WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH)),
                           static_cast<int>(WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT))};
    if (!isDecodableSize(size))
        return false;
    const PictureSize scaled = fitted(size, target.bounds());
    PixelBuffer pixels{scaled.width, scaled.height, {}};
    const std::size_t rowSize = std::size_t{4} * static_cast<std::size_t>(scaled.width);
    pixels.bytes.resize(rowSize * static_cast<std::size_t>(scaled.height));
    if (!decodeFrame(frame.fragment, pixels, scaledPlace(frame, size, scaled)))
        return false;
    Data profile = chunk(demuxer.get(), "ICCP");
    if (profile.size() > largestProfile)
        profile.clear();
    target.begin({scaled, size, orientationOfEXIF(chunk(demuxer.get(), "EXIF")),
                  conversionToSRGB(PixelColours::rgb, profile)});
    for (std::size_t start = 0; start < pixels.bytes.size(); start += rowSize)
        target.addRow(pixels.bytes.data() + start);
    return true;
}

} // namespace sela
