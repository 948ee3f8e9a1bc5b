#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/RequestLoop.h"
#include "mediaservice/videos/VideoFile.h"
#include "platform/media/MediaMessages.h"

#include <memory>

namespace sela {

/// Answers requests about videos. It keeps the last video open, since a cover takes two or three requests.
/// One thread at a time.
class VideoDecoder {
public:
    VideoDecoder();

    /// The duration or the frame that `request` asks for; anything else is unreadable.
    MediaOutcome answer(const MediaRequest& request, InputFile file);

private:
    MediaOutcome frame(const MediaRequest& request);

    std::unique_ptr<VideoFile> video_;
    std::uint32_t asset_ = 0;
};

} // namespace sela
