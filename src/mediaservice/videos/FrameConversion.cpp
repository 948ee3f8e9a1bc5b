#include "mediaservice/videos/FrameConversion.h"

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/ToneMapping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/frame.h>
#include <libavutil/mastering_display_metadata.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace sela {

namespace {

// Pixel shapes beyond this come from broken files.
constexpr double mostStretched = 8;

constexpr int highDefinitionWidth = 1280;

struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

/// The frame's size once its pixels are square: stretched, never shrunk, so that no detail is lost.
PictureSize displaySize(const AVFrame& frame, const AVStream& track) {
    // Where the container and the codec differ, players use the container's value.
    AVRational shape = track.sample_aspect_ratio;
    if (shape.num <= 0 || shape.den <= 0)
        shape = frame.sample_aspect_ratio;
    const double ratio = shape.num > 0 && shape.den > 0 ? av_q2d(shape) : 1;
    if (ratio > mostStretched || ratio < 1 / mostStretched)
        return {frame.width, frame.height};
    if (ratio >= 1)
        return {static_cast<int>(std::lround(frame.width * ratio)), frame.height};
    return {frame.width, static_cast<int>(std::lround(frame.height / ratio))};
}

/// The frame's colour matrix; a frame without one gets the usual matrix for its size.
int colourMatrix(const AVFrame& frame) {
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    case AVCOL_SPC_UNSPECIFIED:
        return frame.width >= highDefinitionWidth ? SWS_CS_ITU709 : SWS_CS_ITU601;
    default:
        return SWS_CS_ITU601;
    }
}

/// The track's display matrix of nine numbers; null when it has none.
const std::int32_t* displayMatrix(const AVStream& track) {
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102) // FFmpeg 6.1
    const AVCodecParameters& codec = *track.codecpar;
    const AVPacketSideData* const found =
        av_packet_side_data_get(codec.coded_side_data, codec.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    const std::uint8_t* const data = found ? found->data : nullptr;
#else
    const std::uint8_t* const data = av_stream_get_side_data(&track, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
#endif
    return reinterpret_cast<const std::int32_t*>(data);
}

bool isFullRange(const AVFrame& frame) {
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
        return true;
    default:
        return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

/// The colours of a frame with a high dynamic range; absent for others.
std::optional<HDRColours> hdrColours(const AVFrame& frame, const AVStream& track) {
    const auto told = [](int own, int ofTrack) { return own != AVCOL_TRC_UNSPECIFIED ? own : ofTrack; };
    auto colours = HDRColours::of(told(frame.color_trc, track.codecpar->color_trc),
                                  told(frame.color_primaries, track.codecpar->color_primaries));
    const auto* data = av_frame_get_side_data(&frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA);
    const auto* display = data ? reinterpret_cast<const AVMasteringDisplayMetadata*>(data->data) : nullptr;
    if (colours && display && display->has_luminance && display->max_luminance.den > 0)
        colours->peak = av_q2d(display->max_luminance);
    return colours;
}

/// Scales the frame to `target` in pixels of `format`, into `rows` of this many bytes each; false on failure.
bool scale(const AVFrame& frame, PictureSize target, AVPixelFormat format, std::uint8_t* rows, int rowSize) {
    const bool smaller = target.width < frame.width || target.height < frame.height;
    const std::unique_ptr<SwsContext, FreeScaler> scaler(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), target.width, target.height,
        format, (smaller ? SWS_AREA : SWS_BICUBIC) | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr,
        nullptr));
    if (!scaler)
        return false;
    constexpr int one = 1 << 16;
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(colourMatrix(frame)), isFullRange(frame),
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, one, one);
    std::uint8_t* const planes[] = {rows, nullptr, nullptr, nullptr};
    const int strides[] = {rowSize, 0, 0, 0};
    return sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) > 0;
}

} // namespace

std::optional<PixelBuffer> convertedFrame(const AVFrame& frame, const AVStream& track, PictureBounds bounds) {
    const PictureSize size = displaySize(frame, track);
    const auto format = static_cast<AVPixelFormat>(frame.format);
    if (frame.width < 1 || frame.height < 1 || std::max(size.width, size.height) > largestSourceSide ||
        !sws_isSupportedInput(format))
        return std::nullopt;
    const PictureSize target = fitted(size, bounds);
    PixelBuffer pixels{target.width, target.height, {}};
    pixels.bytes.resize(std::size_t{4} * static_cast<std::size_t>(target.width) *
                        static_cast<std::size_t>(target.height));
    if (const auto colours = hdrColours(frame, track)) {
        std::vector<std::uint16_t> signals(pixels.bytes.size());
        if (!scale(frame, target, AV_PIX_FMT_RGBA64, reinterpret_cast<std::uint8_t*>(signals.data()),
                   8 * target.width))
            return std::nullopt;
        ToneMapping(*colours).convert(signals, pixels.bytes);
    } else if (!scale(frame, target, AV_PIX_FMT_RGBA, pixels.bytes.data(), 4 * target.width)) {
        return std::nullopt;
    }
    // A cover has no use for the alpha that a few codecs carry.
    for (std::size_t i = 3; i < pixels.bytes.size(); i += 4)
        pixels.bytes[i] = 255;
    return pixels;
}

Orientation displayOrientation(const AVStream& track) {
    const std::int32_t* const matrix = displayMatrix(track);
    if (!matrix)
        return Orientation::up;
    // The matrix's rows are the directions of the frame's horizontal (a, b) and vertical (c, d) axes on the
    // screen.
    const double a = matrix[0];
    const double b = matrix[1];
    const double c = matrix[3];
    const double d = matrix[4];
    if (std::abs(a) + std::abs(d) >= std::abs(b) + std::abs(c)) {
        if (a >= 0)
            return d >= 0 ? Orientation::up : Orientation::downMirrored;
        return d >= 0 ? Orientation::upMirrored : Orientation::down;
    }
    if (b >= 0)
        return c >= 0 ? Orientation::leftMirrored : Orientation::right;
    return c >= 0 ? Orientation::left : Orientation::rightMirrored;
}

} // namespace sela
