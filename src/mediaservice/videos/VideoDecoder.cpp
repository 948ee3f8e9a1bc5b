#include "mediaservice/videos/VideoDecoder.h"

#include "mediaservice/videos/FrameConversion.h"
#include "mediaservice/videos/FrameReader.h"

#include <algorithm>

extern "C" {
#include <libavformat/avformat.h>
}

namespace sela {

namespace {

/// A time in the track's time base.
std::int64_t inTimeBase(const CMTime& time, const AVStream& track) {
    if (time.positiveInfinity)
        return VideoFile::farthestTime;
    const std::int64_t units = av_rescale_q(time.value, {1, time.timescale}, track.time_base);
    return std::clamp(units, -VideoFile::farthestTime, VideoFile::farthestTime);
}

FrameWindow windowOf(const MediaRequest& request, const VideoFile& video) {
    const AVStream& track = video.track();
    const std::int64_t start = video.startTime();
    const std::int64_t time = start + inTimeBase(request.time, track);
    return {time - std::max<std::int64_t>(0, inTimeBase(request.toleranceBefore, track)), time,
            time + std::max<std::int64_t>(0, inTimeBase(request.toleranceAfter, track))};
}

CMTime sinceStart(std::int64_t time, const VideoFile& video) {
    const AVRational base = video.track().time_base;
    const int timescale = base.num == 1 ? base.den : AV_TIME_BASE;
    return {av_rescale_q(time - video.startTime(), base, {1, timescale}), timescale};
}

} // namespace

VideoDecoder::VideoDecoder() {
    av_log_set_level(AV_LOG_QUIET);
}

MediaOutcome VideoDecoder::answer(const MediaRequest& request, InputFile file) {
    if (!video_ || asset_ != request.asset) {
        video_ = VideoFile::open(std::move(file));
        asset_ = request.asset;
    }
    MediaOutcome outcome;
    if (!video_)
        return outcome;
    switch (request.operation) {
    case MediaOperation::decodePicture:
    case MediaOperation::encodePicture:
        return outcome;
    case MediaOperation::readDuration:
        outcome.status = MediaStatus::done;
        outcome.time = video_->duration();
        return outcome;
    case MediaOperation::copyFrame:
        return frame(request);
    }
    return outcome;
}

MediaOutcome VideoDecoder::frame(const MediaRequest& request) {
    MediaOutcome outcome;
    outcome.status = MediaStatus::noSuchFrame;
    const auto read = readFrame(*video_, windowOf(request, *video_));
    if (!read)
        return outcome;
    auto pixels = convertedFrame(*read->frame, video_->track(), request.bounds());
    if (!pixels)
        return outcome;
    if (request.appliesTrackTransform)
        pixels = upright(std::move(*pixels), displayOrientation(video_->track()));
    outcome.status = MediaStatus::done;
    outcome.pixels = std::move(*pixels);
    outcome.time = sinceStart(read->time, *video_);
    outcome.framesDecoded = read->framesDecoded;
    return outcome;
}

} // namespace sela
