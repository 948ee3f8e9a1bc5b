#include "share/MediaHelpers.h"

#include "platform/foundation/FatalError.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "platform/foundation/UTF8.h"
#include "platform/media/AVAsset.h"
#include "platform/media/AVAssetImageGenerator.h"
#include "store/FileKind.h"

#include <algorithm>
#include <array>
#include <string>

namespace sela {

namespace {

// The natural logarithm of 60: a cover lies about a quarter of the way in.
constexpr double coverDivisor = 4.0943445622221;
constexpr double earliestCover = 0.5;     // seconds; of shorter videos the middle is taken
constexpr double shortestDuration = 0.01; // seconds
constexpr double coverTolerance = 0.1;    // seconds

UIImage requiredImage(std::string_view name) {
    auto image = UIImage::named(name);
    if (!image)
        fatalError("MediaHelpers: missing image asset " + std::string(name));
    return *image;
}

/// When the cover of a video of `duration` seconds (above 0) is taken.
double coverTime(double duration) {
    const double time = duration / coverDivisor;
    return time < earliestCover ? duration * 0.5 : time;
}

bool isAudio(std::string_view name) {
    return fileKind(name) == FileKind::audio;
}

bool isVideoType(std::string_view typeIdentifier) {
    const std::string type = lowercasedASCII(typeIdentifier);
    return std::ranges::any_of(std::to_array<std::string_view>({"mov", "mp4", "m4v", "mpeg"}),
                               [&](std::string_view part) { return type.find(part) != std::string::npos; });
}

} // namespace

UIImage getVideoCover(const URL& url, PictureBounds bounds) {
    const AVAsset asset = AVAsset::assetWithURL(url);
    const CMTime assetDuration = asset.duration();
    const std::int32_t timescale = assetDuration.timescale;

    double duration = assetDuration.seconds();
    double time = 0;
    if (duration != 0) {
        duration = std::max(duration, shortestDuration);
        time = coverTime(duration);
    }
    AVAssetImageGenerator first(asset);
    first.maximumSize = bounds;
    first.appliesPreferredTrackTransform = true;
    first.requestedTimeToleranceBefore = CMTime::fromSeconds(coverTolerance, timescale);
    first.requestedTimeToleranceAfter = CMTime::fromSeconds(coverTolerance, timescale);
    if (const auto image = first.copyCGImageAtTime(CMTime::fromSeconds(time, timescale)))
        return image.value();
    NSLog("getVideoCover first trial failed, timescale = " + std::to_string(timescale) +
          ", seconds = " + describe(time) + ", duration = " + describe(duration));

    AVAssetImageGenerator second(asset);
    second.maximumSize = bounds;
    second.requestedTimeToleranceBefore = kCMTimePositiveInfinity;
    second.requestedTimeToleranceAfter = kCMTimePositiveInfinity;
    if (const auto image = second.copyCGImageAtTime(CMTime::fromSeconds(0, timescale)))
        return image.value();
    NSLog("getVideoCover second trial failed, timescale = " + std::to_string(timescale) + ", fileSize = " +
          std::to_string(getFileSize(url)) + ", duration = " + describe(assetDuration.seconds()));
    return requiredImage("SelaPicture");
}

std::int64_t getFileSize(const URL& url) {
    const auto attributes = FileManager::defaultManager().attributesOfItem(url.path());
    if (!attributes) {
        NSLog("URL: getFileSize failed, path = " + url.path());
        return 0;
    }
    return attributes.value().size;
}

std::optional<UIImage> thumbnailOfSharedFile(const URL& url, std::string_view typeIdentifier,
                                             PictureBounds bounds) {
    if (isAudio(typeIdentifier) || isAudio(url.lastPathComponent()))
        return requiredImage("audiosmall");
    if (isVideoType(typeIdentifier))
        return getVideoCover(url, bounds);
    auto image = UIImage::contentsOfFile(url.path(), bounds);
    if (!image)
        NSLog("loadThumbnails: failed to decode image fileName = " + url.lastPathComponent());
    return image;
}

} // namespace sela
