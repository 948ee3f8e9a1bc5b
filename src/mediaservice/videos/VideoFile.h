#pragma once

#include "mediaservice/InputFile.h"
#include "platform/media/CMTime.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

struct AVFormatContext;
struct AVIOContext;
struct AVPacket;
struct AVStream;

namespace sela {

/// The packets of a video file's first video track. The containers and codecs that phones and cameras write
/// are read, nothing else, and nothing beyond the file itself. One thread at a time.
class VideoFile {
public:
    /// Absent when the file is none of those containers or has no video track.
    static std::unique_ptr<VideoFile> open(InputFile file);

    ~VideoFile();
    VideoFile(const VideoFile&) = delete;
    VideoFile& operator=(const VideoFile&) = delete;

    /// The duration in the track's time scale; zero when the file has no valid one.
    CMTime duration() const;

    /// The track, for its codec and its times.
    const AVStream& track() const { return *track_; }

    /// Times of a track lie between this and its negative, so that sums and differences of them do not
    /// overflow, whatever the file says.
    static constexpr std::int64_t farthestTime = std::numeric_limits<std::int64_t>::max() / 8;

    /// The track's time at the start of the video, in its time base.
    std::int64_t startTime() const;

    /// Seeks to the last key frame at or before `time` (in the track's time base and clock); to the first one
    /// when there is none. False when the file is not seekable.
    bool seek(std::int64_t time);

    /// The first key frame after `time` that the file's index knows; absent when there is none.
    std::optional<std::int64_t> keyFrameAfter(std::int64_t time) const;

    /// The next packet of the track; false at the end of the file.
    bool read(AVPacket& packet);

private:
    explicit VideoFile(InputFile file) : file_(std::move(file)) {}

    bool openContainer();
    static int readBytes(void* opaque, std::uint8_t* buffer, int size);
    static std::int64_t seekBytes(void* opaque, std::int64_t offset, int whence);

    InputFile file_;
    std::int64_t offset_ = 0;
    AVIOContext* input_ = nullptr;
    AVFormatContext* container_ = nullptr;
    AVStream* track_ = nullptr;
};

} // namespace sela
