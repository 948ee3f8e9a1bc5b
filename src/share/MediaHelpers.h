#pragma once

#include "platform/foundation/URL.h"
#include "platform/media/UIImage.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace sela {

// What the share screen shows of a shared file. The operations block until the picture is ready, have no
// state and may be called from any thread; `bounds` is the size in pixels at which it will be drawn.

/// The still image that stands for a video: an upright frame from about a quarter of the way in, else the
/// first frame that can be decoded, else the image asset "SelaPicture". Each failure is logged.
UIImage getVideoCover(const URL& url, PictureBounds bounds);

/// The size of a file in bytes; 0, and a log line, when its attributes cannot be read.
std::int64_t getFileSize(const URL& url);

/// The thumbnail of a shared file: "audiosmall" when its type identifier or its name is one of audio, the
/// cover when its type identifier is one of a video, else the picture in it. Absent, with a log line, when
/// there is no picture in it that can be decoded.
std::optional<UIImage> thumbnailOfSharedFile(const URL& url, std::string_view typeIdentifier,
                                             PictureBounds bounds);

} // namespace sela
