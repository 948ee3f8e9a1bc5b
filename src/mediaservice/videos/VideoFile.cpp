#include "mediaservice/videos/VideoFile.h"

#include "mediaservice/videos/AllowedDecoders.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace sela {

namespace {

constexpr int inputBufferSize = 64 << 10;

// The limits of probing before a file counts as unknown, in bytes and in microseconds.
constexpr std::int64_t probeSize = 5 << 20;
constexpr std::int64_t probeDuration = std::int64_t{5} * AV_TIME_BASE;
constexpr int mostTracks = 64;

// A video of a longer duration counts as one with a damaged header.
constexpr std::int64_t longestDuration = std::int64_t{30} * 24 * 3600; // seconds

constexpr const char* containers =
    "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,mpeg,mpegvideo,mpegts,avi,h264,hevc";

std::string commaSeparated(std::span<const char* const> names) {
    std::string list;
    for (const char* name : names)
        list.append(list.empty() ? "" : ",").append(name);
    return list;
}

} // namespace

std::unique_ptr<VideoFile> VideoFile::open(InputFile file) {
    std::unique_ptr<VideoFile> video(new VideoFile(std::move(file)));
    return video->openContainer() ? std::move(video) : nullptr;
}

VideoFile::~VideoFile() {
    avformat_close_input(&container_);
    if (input_)
        av_freep(&input_->buffer);
    avio_context_free(&input_);
}

int VideoFile::readBytes(void* opaque, std::uint8_t* buffer, int size) {
    auto& self = *static_cast<VideoFile*>(opaque);
    const auto bytes = std::as_writable_bytes(std::span(buffer, static_cast<std::size_t>(size)));
    const std::size_t count = self.file_.readAt(self.offset_, bytes);
    self.offset_ += static_cast<std::int64_t>(count);
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t VideoFile::seekBytes(void* opaque, std::int64_t offset, int whence) {
    auto& self = *static_cast<VideoFile*>(opaque);
    if (whence & AVSEEK_SIZE)
        return self.file_.size();
    const std::int64_t base = whence == SEEK_CUR ? self.offset_ : whence == SEEK_END ? self.file_.size() : 0;
    if (offset < -base)
        return AVERROR(EINVAL);
    self.offset_ = base + offset;
    return self.offset_;
}

bool VideoFile::openContainer() {
    auto* buffer = static_cast<unsigned char*>(av_malloc(inputBufferSize));
    input_ = buffer ? avio_alloc_context(buffer, inputBufferSize, 0, this, &readBytes, nullptr, &seekBytes)
                    : nullptr;
    if (!input_)
        av_free(buffer);
    container_ = input_ ? avformat_alloc_context() : nullptr;
    if (!container_)
        return false;
    container_->pb = input_;
    container_->probesize = probeSize;
    container_->max_analyze_duration = probeDuration;
    container_->max_streams = mostTracks;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", containers, 0);
    av_dict_set(&options, "codec_whitelist", commaSeparated(allowedDecoders).c_str(), 0);
    // No protocol is allowed: a container cannot refer to other files or addresses.
    av_dict_set(&options, "protocol_whitelist", "", 0);
    const int opened = avformat_open_input(&container_, nullptr, nullptr, &options);
    av_dict_free(&options);
    if (opened != 0)
        return false;

    // Containers with a table of contents provide all that is needed; of the others it must be found in the
    // packets.
    const auto isVideo = [](const AVStream* track) {
        return track->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
               (track->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
    };
    const auto isKnown = [&](const AVStream* track) {
        return !isVideo(track) || (track->codecpar->width > 0 && track->codecpar->height > 0);
    };
    const std::span known(container_->streams, container_->nb_streams);
    if (known.empty() || container_->duration == AV_NOPTS_VALUE || !std::ranges::all_of(known, isKnown))
        if (avformat_find_stream_info(container_, nullptr) < 0)
            return false;

    const std::span tracks(container_->streams, container_->nb_streams);
    const auto found = std::ranges::find_if(tracks, isVideo);
    if (found == tracks.end())
        return false;
    track_ = *found;
    for (AVStream* track : tracks)
        track->discard = track == track_ ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    return track_->time_base.num > 0 && track_->time_base.den > 0;
}

CMTime VideoFile::duration() const {
    std::int64_t microseconds = container_->duration;
    if (microseconds == AV_NOPTS_VALUE && track_->duration != AV_NOPTS_VALUE)
        microseconds = av_rescale_q(track_->duration, track_->time_base, AVRational{1, AV_TIME_BASE});
    const int timescale = track_->time_base.num == 1 ? track_->time_base.den : AV_TIME_BASE;
    if (microseconds <= 0 || microseconds / AV_TIME_BASE > longestDuration)
        return {0, timescale};
    return {av_rescale(microseconds, timescale, AV_TIME_BASE), timescale};
}

std::int64_t VideoFile::startTime() const {
    return track_->start_time == AV_NOPTS_VALUE
               ? 0
               : std::clamp<std::int64_t>(track_->start_time, -farthestTime, farthestTime);
}

bool VideoFile::seek(std::int64_t time) {
    return av_seek_frame(container_, track_->index, time, AVSEEK_FLAG_BACKWARD) >= 0 ||
           av_seek_frame(container_, track_->index, time, 0) >= 0;
}

std::optional<std::int64_t> VideoFile::keyFrameAfter(std::int64_t time) const {
    const AVIndexEntry* entry = avformat_index_get_entry_from_timestamp(track_, time + 1, 0);
    if (!entry || entry->timestamp <= time)
        return std::nullopt;
    return entry->timestamp;
}

bool VideoFile::read(AVPacket& packet) {
    for (;;) {
        av_packet_unref(&packet);
        if (av_read_frame(container_, &packet) < 0)
            return false;
        if (packet.stream_index == track_->index)
            return true;
    }
}

} // namespace sela
