#include "platform/media/AVAssetImageGenerator.h"

#include "platform/media/MediaServiceClient.h"

#include <algorithm>

namespace sela {

Result<UIImage> AVAssetImageGenerator::copyCGImageAtTime(CMTime time, CMTime* actualTime) const {
    MediaRequest request;
    request.operation = MediaOperation::copyFrame;
    request.setBounds(maximumSize);
    request.asset = asset_.identifier();
    request.time = time;
    request.toleranceBefore = requestedTimeToleranceBefore;
    request.toleranceAfter = requestedTimeToleranceAfter;
    request.appliesTrackTransform = appliesPreferredTrackTransform;
    auto answer = MediaServiceClient::shared().perform(asset_.url().path(), request);
    if (!answer)
        return answer.error();
    if (actualTime)
        *actualTime = answer.value().response.time;
    return UIImage::fromPixels(std::move(answer.value().pixels));
}

} // namespace sela
