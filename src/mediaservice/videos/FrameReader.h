#pragma once

#include "mediaservice/videos/VideoFile.h"

#include <cstdint>
#include <memory>
#include <optional>

struct AVFrame;

namespace sela {

struct FreeFrame {
    void operator()(AVFrame* frame) const;
};
using VideoFrame = std::unique_ptr<AVFrame, FreeFrame>;

/// The times between which a frame is wanted, in the track's time base and by its clock.
struct FrameWindow {
    std::int64_t from = 0;
    std::int64_t time = 0; ///< the time asked for, from `from` to `to`
    std::int64_t to = 0;

    bool contains(std::int64_t other) const { return other >= from && other <= to; }
};

/// A frame of a video, and the effort it took.
struct ReadFrame {
    VideoFrame frame;
    std::int64_t time = 0; ///< when it starts to be shown
    std::uint32_t framesDecoded = 0;
};

/// Decodes the frame of a window: a key frame inside it, else the first frame that is shown in it, reached by
/// decoding from the key frame before. Absent when no frame is shown in the window or its data is broken.
std::optional<ReadFrame> readFrame(VideoFile& video, const FrameWindow& window);

} // namespace sela
