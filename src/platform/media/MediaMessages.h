#pragma once

#include "platform/foundation/Data.h"
#include "platform/media/CMTime.h"
#include "platform/media/PictureBounds.h"

#include <cstdint>
#include <optional>

namespace sela {

/// What the media helpers are asked and what they answer: fixed-size messages, one a packet, in the byte
/// order of the machine that both ends run on. The reader of a message trusts nothing in it. Values;
/// thread-safe.

/// What to do with a request's file.
enum class MediaOperation : std::uint32_t {
    decodePicture, ///< the picture in the file
    readDuration,  ///< the duration of the video in the file
    copyFrame,     ///< one frame of the video in the file
    encodePicture, ///< the picture in the file as a JPEG file, in its full size unless a size is asked for
};

/// The largest JPEG file that a helper makes, in bytes. Shared memory of that size takes no memory before it
/// is written.
inline constexpr std::uint64_t largestEncodedPicture = std::uint64_t{1} << 30;

/// One request. With it travel the file's descriptor and, for pixels and JPEG files, that of shared memory of
/// `memorySize` bytes.
struct MediaRequest {
    std::uint32_t number = 0; ///< repeated in the response
    MediaOperation operation = MediaOperation::decodePicture;
    std::uint32_t maximumSide =
        0; ///< of the picture, 1 to `maximumPictureSide`; 0 for a duration and the full size
    std::uint32_t shorterSide = 0; ///< of the pixels, at most `maximumSide`; 0: as that allows
    std::uint32_t asset = 0;       ///< requests with the same number are about the same open video
    CMTime time;                   ///< of the frame, from the start of the video
    CMTime toleranceBefore;
    CMTime toleranceAfter;
    bool appliesTrackTransform = false; ///< whether the frame is turned upright
    bool wholeOnly = false;             ///< whether a picture with a missing part is an error
    std::uint32_t quality = 0;          ///< of the JPEG file, 1 to 100; 0 when none is made

    /// The size of the shared memory in bytes; 0 when the request needs none.
    std::uint64_t memorySize() const;

    PictureBounds bounds() const { return {static_cast<int>(maximumSide), static_cast<int>(shorterSide)}; }
    void setBounds(PictureBounds bounds);

    bool operator==(const MediaRequest&) const = default;
};

enum class MediaStatus : std::uint32_t {
    done,
    unreadable,  ///< no picture or video that can be decoded whole
    noSuchFrame, ///< the video has no frame within the tolerance
};

/// The answer to one request. A picture's pixels lie at the start of the shared memory, as in `PixelBuffer`.
struct MediaResponse {
    std::uint32_t number = 0;
    MediaStatus status = MediaStatus::unreadable;
    std::uint32_t width = 0; ///< in pixels; 0 when there are none
    std::uint32_t height = 0;
    CMTime time;                     ///< the duration asked for, or the time of the frame taken
    std::uint32_t framesDecoded = 0; ///< frames that were decoded on the way to the one taken
    std::uint64_t fileSize = 0; ///< of the JPEG file at the start of the shared memory; 0 when there is none

    bool operator==(const MediaResponse&) const = default;
};

Data encode(const MediaRequest& request);
Data encode(const MediaResponse& response);

/// Absent when the bytes are no request that is valid by the rules above.
std::optional<MediaRequest> decodeRequest(DataView bytes);

/// The answer to `request`; absent when the bytes are no response that is valid by the rules above, answer
/// another request, or claim more pixels than were asked for.
std::optional<MediaResponse> decodeResponse(DataView bytes, const MediaRequest& request);

} // namespace sela
