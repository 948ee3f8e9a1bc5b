#pragma once

#include "platform/media/PictureBounds.h"
#include "platform/media/UIImage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sela {

/// Width and height in pixels.
struct PictureSize {
    int width = 0;
    int height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// The largest side of a picture that is decoded at all, in pixels (also the most that JPEG can have).
inline constexpr int largestSourceSide = 65535;

/// Whether a picture of that size is decoded: its sides are 1 to `largestSourceSide`, and it has no more
/// pixels than the largest that cameras and panoramas make. A file of a few kilobytes can claim any size.
bool isDecodableSize(PictureSize size);

/// `size` scaled down with its aspect ratio so that no side is longer than `bounds`; never scaled up.
PictureSize fitted(PictureSize size, PictureBounds bounds);

/// Scales a picture down while it arrives row by row, so that it is never in memory as a whole: each pixel of
/// the result is the mean of the area it covers, parts of pixels counted as parts. The four channels of a
/// pixel are treated alike, so colours must be premultiplied when there is alpha. One thread at a time.
class AreaScaler {
public:
    /// From `source` (sides 1 to `largestSourceSide`) to `target` (no side longer than the source's).
    AreaScaler(PictureSize source, PictureSize target);

    /// Takes the next row, 4 * source width bytes. Rows beyond the source's height are ignored.
    void addRow(const std::uint8_t* row);

    /// Whether every row has arrived.
    bool isComplete() const { return nextRow_ == source_.height; }

    /// The result; rows that have not arrived count as zeros. Called once.
    PixelBuffer take() { return std::move(result_); }

private:
    /// The position of boundary number `index` between pixels of the result, in 1/256 pixels of the source.
    static std::uint32_t boundary(int index, int sourceLength, int targetLength);

    void accumulate(const std::uint8_t* row, std::uint32_t weight);
    void finishTargetRow(std::uint32_t weight);

    PictureSize source_;
    PixelBuffer result_;
    std::vector<std::uint32_t> sums_;       ///< of the rows so far under the current row of the result
    std::vector<std::uint32_t> boundaries_; ///< between columns of the result
    int nextRow_ = 0;
    int targetRow_ = 0;
};

} // namespace sela
