#pragma once

#include "mediaservice/pictures/Orientation.h"
#include "platform/media/UIImage.h"

#include <optional>

struct AVFrame;
struct AVStream;

namespace sela {

/// A decoded frame as pixels in RGB, with square pixels, scaled so that no side is longer than `bounds`; its
/// colour matrix and range are those of the frame, a high dynamic range is mapped to the screen's. Absent
/// when its format cannot be converted.
std::optional<PixelBuffer> convertedFrame(const AVFrame& frame, const AVStream& track, PictureBounds bounds);

/// How the track's frames are to be rotated and mirrored for display, to the nearest quarter turn.
Orientation displayOrientation(const AVStream& track);

} // namespace sela
