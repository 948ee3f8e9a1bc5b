#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/media/PictureBounds.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

class SharedMemory;

/// Pixels of a picture: rows from the top, `4 * width` bytes each, every pixel red, green, blue, alpha with
/// the colours premultiplied by alpha, in sRGB.
struct PixelBuffer {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

/// A file's content, in memory that a helper wrote. An immutable value that is cheap to copy.
class EncodedImage {
public:
    /// The first `size` bytes of `memory`, which has as many.
    EncodedImage(std::shared_ptr<const SharedMemory> memory, std::size_t size);

    /// Valid as long as this or a copy of it. Those that are read are resident in this process.
    DataView bytes() const { return bytes_; }

    /// Says that the first `count` bytes will hardly be read again, so that they need not stay resident.
    void release(std::size_t count) const;

private:
    std::shared_ptr<const SharedMemory> memory_;
    DataView bytes_;
};

/// A picture: a named asset, or a block of pixels. An immutable value that is cheap to copy (pixels are
/// shared) and may be read from any thread.
class UIImage {
public:
    /// How a view draws the picture: as it is, or as a stencil filled with the view's tint colour.
    enum class RenderingMode { automatic, alwaysTemplate };

    /// The asset of that name; absent when the catalogue has none.
    static std::optional<UIImage> named(std::string_view name);

    /// The picture in a file, decoded by the media helper within `bounds` (no side above
    /// `maximumPictureSide`), upright, in sRGB. Absent when the file is missing or is no
    /// picture that can be decoded whole. Blocks; may be called from any thread.
    static std::optional<UIImage> contentsOfFile(const std::string& path, PictureBounds bounds);

    /// The whole picture in an open file, which is kept open: `jpegData` gives it in its full size, while its
    /// pixels are within `bounds`. Absent when it is no picture, or a part of it is missing. Blocks.
    static std::optional<UIImage> contentsOfOpenFile(FileDescriptor file, PictureBounds bounds);

    /// A picture from pixels; `pixels.bytes` must hold exactly 4 * width * height bytes, else the process
    /// stops.
    static UIImage fromPixels(PixelBuffer pixels);

    /// The asset's name; empty for a picture of pixels.
    const std::string& assetName() const { return assetName_; }

    /// The pixels; null for a named asset, which is drawn at the size where it is shown.
    const PixelBuffer* pixels() const { return pixels_.get(); }

    /// The natural size: an asset's in points, otherwise in pixels.
    double width() const { return width_; }
    double height() const { return height_; }

    RenderingMode renderingMode() const { return renderingMode_; }

    /// The same picture drawn in another way.
    UIImage withRenderingMode(RenderingMode mode) const;

    /// Whether a right-to-left view shows the picture mirrored, as is needed for an arrow in the direction of
    /// reading.
    bool flipsForRightToLeftLayoutDirection() const { return flipsForRightToLeftLayoutDirection_; }

    /// The same picture, mirrored in such a view.
    UIImage imageFlippedForRightToLeftLayoutDirection() const;

    /// A picture in an open file as JPEG, in its full size, at `quality` 0.0 to 1.0 (values outside count as
    /// the nearer end), transparent parts flattened on white. The media helper makes it while reading that
    /// file, so that it is never whole in the memory of this process; that takes seconds for the largest.
    /// Absent for other pictures, and for one with a side above the 65,500 that libjpeg writes. Blocks.
    std::optional<EncodedImage> jpegData(double quality) const;

    /// The picture in a file as such a JPEG, within `bounds` and upright, made by the media helper alone.
    /// Absent when the file is missing or is no picture that can be decoded. Blocks.
    static std::optional<EncodedImage> jpegDataOfFile(const std::string& path, PictureBounds bounds,
                                                      double quality);

private:
    UIImage() = default;

    std::string assetName_;
    std::shared_ptr<const PixelBuffer> pixels_;
    std::shared_ptr<const FileDescriptor> original_; ///< of a picture in an open file
    double width_ = 0;
    double height_ = 0;
    RenderingMode renderingMode_ = RenderingMode::automatic;
    bool flipsForRightToLeftLayoutDirection_ = false;
};

} // namespace sela
