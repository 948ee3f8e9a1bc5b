#pragma once

#include "platform/foundation/Error.h"
#include "platform/media/AVAsset.h"
#include "platform/media/CMTime.h"
#include "platform/media/UIImage.h"

namespace sela {

/// Takes still images out of a video. The properties are set before the call; one thread at a time.
class AVAssetImageGenerator {
public:
    explicit AVAssetImageGenerator(AVAsset asset) : asset_(std::move(asset)) {}

    /// Whether images are turned and mirrored as the video's track says, so that they are upright.
    bool appliesPreferredTrackTransform = false;

    /// How far before and after the time asked for the image may lie.
    CMTime requestedTimeToleranceBefore = kCMTimePositiveInfinity;
    CMTime requestedTimeToleranceAfter = kCMTimePositiveInfinity;

    /// How large an image may be; frames are scaled down to it while they are converted.
    PictureBounds maximumSize = maximumPictureSide;

    /// The image at `time`: a key frame within the tolerance, else the first frame that is shown within it.
    /// `actualTime`, when not null, gets the time of the frame taken. Fails when the file is no video that
    /// can be decoded or has no frame within the tolerance. Blocks.
    Result<UIImage> copyCGImageAtTime(CMTime time, CMTime* actualTime = nullptr) const;

private:
    AVAsset asset_;
};

} // namespace sela
