#include "mediaservice/videos/FrameReader.h"

#include "mediaservice/videos/AllowedDecoders.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace sela {

void FreeFrame::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}

namespace {

// A frame larger than this is not decoded (144 megapixels; 8K video has 33).
constexpr std::int64_t mostPixels = std::int64_t{144} * 1000 * 1000;

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, FreePacket>;

struct FreeDecoder {
    void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
};
using Decoder = std::unique_ptr<AVCodecContext, FreeDecoder>;

// With more frames to decode than this, a second thread saves more time than its start takes.
constexpr std::int64_t mostFramesOfOneThread = 16;

/// The largest frame that is decoded by two threads, each of which holds frames of its own (4K).
constexpr std::int64_t mostPixelsOfTwoThreads = std::int64_t{4096} * 2304;

/// The decoder of a codec; null when none is allowed.
const AVCodec* allowedDecoder(AVCodecID codec) {
    for (const char* name : allowedDecoders) {
        const AVCodec* decoder = avcodec_find_decoder_by_name(name);
        if (decoder && decoder->id == codec)
            return decoder;
    }
    return nullptr;
}

int threadsFor(const AVStream& track, std::int64_t frames) {
    const std::int64_t pixels = std::int64_t{track.codecpar->width} * track.codecpar->height;
    return frames > mostFramesOfOneThread && pixels <= mostPixelsOfTwoThreads ? 2 : 1;
}

/// A decoder for about this many frames of the track; null when its codec is unsupported.
Decoder openDecoder(const AVStream& track, std::int64_t frames) {
    const AVCodec* codec = allowedDecoder(track.codecpar->codec_id);
    Decoder decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avcodec_parameters_to_context(decoder.get(), track.codecpar) < 0)
        return nullptr;
    decoder->pkt_timebase = track.time_base;
    decoder->thread_count = threadsFor(track, frames);
    decoder->max_pixels = mostPixels;
    return avcodec_open2(decoder.get(), codec, nullptr) == 0 ? std::move(decoder) : nullptr;
}

std::int64_t timeOf(const AVPacket& packet) {
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

/// `expected` where the stream does not say it, as streams without a container may not.
std::int64_t timeOf(const AVFrame& frame, std::int64_t expected) {
    std::int64_t time = expected;
    if (frame.best_effort_timestamp != AV_NOPTS_VALUE)
        time = frame.best_effort_timestamp;
    else if (frame.pts != AV_NOPTS_VALUE)
        time = frame.pts;
    return std::clamp(time, -VideoFile::farthestTime, VideoFile::farthestTime);
}

std::int64_t durationOf(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100) // FFmpeg 6
    const std::int64_t duration = frame.duration;
#else
    const std::int64_t duration = frame.pkt_duration;
#endif
    return std::clamp<std::int64_t>(duration, 0, VideoFile::farthestTime);
}

/// Decodes from the packet at hand until a frame of the window comes out.
class Walk {
public:
    Walk(VideoFile& video, const FrameWindow& window, Decoder decoder, bool keyFrameSuffices)
        : video_(video), window_(window), decoder_(std::move(decoder)), keyFrameSuffices_(keyFrameSuffices) {}

    std::optional<ReadFrame> run(Packet packet) {
        const std::int64_t start = timeOf(*packet);
        expectedTime_ = start != AV_NOPTS_VALUE ? start : video_.startTime();
        for (bool more = true; more;) {
            skipUnneeded(*packet);
            if (avcodec_send_packet(decoder_.get(), packet.get()) == AVERROR(ENOMEM))
                return std::nullopt;
            if (keyFrameSuffices_)
                break;
            if (auto found = receive())
                return found;
            more = !isPastWindow() && video_.read(*packet);
        }
        avcodec_send_packet(decoder_.get(), nullptr);
        if (auto found = receive())
            return found;
        return lastShown();
    }

private:
    /// Frames that end before the window, and that no other frame is made from, need not be decoded.
    void skipUnneeded(const AVPacket& packet) {
        const std::int64_t time = timeOf(packet);
        const bool unneeded = time != AV_NOPTS_VALUE && packet.duration > 0 && time < window_.from &&
                              packet.duration < window_.from - std::max(time, -VideoFile::farthestTime);
        decoder_->skip_frame = unneeded ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    }

    /// Takes the frames that are ready, up to the one of the window.
    std::optional<ReadFrame> receive() {
        for (;;) {
            VideoFrame frame(av_frame_alloc());
            if (!frame || avcodec_receive_frame(decoder_.get(), frame.get()) != 0)
                return std::nullopt;
            ++framesDecoded_;
            if (frame->decode_error_flags != 0 || frame->flags & AV_FRAME_FLAG_CORRUPT)
                continue;
            const std::int64_t time = timeOf(*frame, expectedTime_);
            expectedTime_ = time + durationOf(*frame);
            if (keyFrameSuffices_ || window_.contains(time))
                return ReadFrame{std::move(frame), time, framesDecoded_};
            if (time > window_.to) {
                pastWindow_ = true;
                // The frame before this one is still shown throughout the window.
                return previous_
                           ? std::optional(ReadFrame{std::move(previous_), previousTime_, framesDecoded_})
                           : std::nullopt;
            }
            previous_ = std::move(frame);
            previousTime_ = time;
        }
    }

    bool isPastWindow() const { return pastWindow_; }

    /// The last frame of the file, when it is shown until the window.
    std::optional<ReadFrame> lastShown() {
        if (!previous_ || pastWindow_ || previousTime_ + durationOf(*previous_) <= window_.from)
            return std::nullopt;
        return ReadFrame{std::move(previous_), previousTime_, framesDecoded_};
    }

    VideoFile& video_;
    const FrameWindow window_;
    Decoder decoder_;
    const bool keyFrameSuffices_;
    bool pastWindow_ = false;
    std::uint32_t framesDecoded_ = 0;
    std::int64_t expectedTime_ = 0;
    VideoFrame previous_;
    std::int64_t previousTime_ = 0;
};

/// Seeks to the key frame at or before `time` and reads its packet; null when there is none.
Packet readKeyPacket(VideoFile& video, std::int64_t time) {
    Packet packet(av_packet_alloc());
    if (!packet || !video.seek(time))
        return nullptr;
    while (video.read(*packet))
        if (packet->flags & AV_PKT_FLAG_KEY)
            return packet;
    return nullptr;
}

/// The packet of a key frame after `earlier`, when one lies in the window; null otherwise.
Packet readLaterKeyPacket(VideoFile& video, const FrameWindow& window, const AVPacket& earlier) {
    // The index holds decoding times, which are never later than presentation times.
    const auto next = video.keyFrameAfter(earlier.dts);
    if (!next || *next > window.to)
        return nullptr;
    Packet packet = readKeyPacket(video, window.to);
    return packet && window.contains(timeOf(*packet)) ? std::move(packet) : nullptr;
}

/// The packet to start from: of the last key frame before the window's end, else of the video's first.
Packet readEarlierKeyPacket(VideoFile& video, const FrameWindow& window) {
    // Seeking goes by decoding times, so it can land on a key frame that is shown later than asked for; the
    // one before it is shown before.
    constexpr int searches = 3;
    std::int64_t target = window.time;
    for (int i = 0; i < searches; ++i) {
        Packet packet = readKeyPacket(video, target);
        if (packet && timeOf(*packet) <= window.to)
            return packet;
        if (packet && packet->dts != AV_NOPTS_VALUE)
            target = std::min(target, packet->dts) - 1;
    }
    return readKeyPacket(video, std::min(video.startTime(), window.from));
}

/// About how many frames are shown from `start` to the window.
std::int64_t framesBefore(const FrameWindow& window, std::int64_t start, const AVStream& track) {
    const AVRational rate = track.avg_frame_rate;
    if (start == AV_NOPTS_VALUE || rate.num <= 0 || rate.den <= 0)
        return 0;
    return av_rescale_q(window.from - std::clamp(start, -VideoFile::farthestTime, VideoFile::farthestTime),
                        track.time_base, av_inv_q(rate));
}

std::optional<ReadFrame> decode(VideoFile& video, const FrameWindow& window, Packet packet,
                                bool keyFrameSuffices) {
    if (!packet)
        return std::nullopt;
    const std::int64_t frames = keyFrameSuffices ? 1 : framesBefore(window, timeOf(*packet), video.track());
    Decoder decoder = openDecoder(video.track(), frames);
    if (!decoder)
        return std::nullopt;
    return Walk(video, window, std::move(decoder), keyFrameSuffices).run(std::move(packet));
}

} // namespace

std::optional<ReadFrame> readFrame(VideoFile& video, const FrameWindow& window) {
    Packet packet = readEarlierKeyPacket(video, window);
    if (packet && window.contains(timeOf(*packet))) {
        if (auto found = decode(video, window, std::move(packet), true))
            return found;
    } else if (Packet later = packet ? readLaterKeyPacket(video, window, *packet) : nullptr) {
        if (auto found = decode(video, window, std::move(later), true))
            return found;
    }
    return decode(video, window, readEarlierKeyPacket(video, window), false);
}

} // namespace sela
