#include "platform/media/UIImage.h"

#include "platform/foundation/AssetCatalogue.h"
#include "platform/foundation/FatalError.h"
#include "platform/media/MediaServiceClient.h"
#include "platform/media/SharedMemory.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace sela {

namespace {

/// The encoder's quality, 1 to 100; NaN counts as the best.
std::uint32_t encoderQuality(double quality) {
    if (!(quality < 1))
        return 100;
    return static_cast<std::uint32_t>(std::max(1L, std::lround(quality * 100)));
}

std::string pathOf(const FileDescriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

/// The number in the first `name="..."` of an SVG file's text; 0 when there is none.
double lengthAttribute(std::string_view svg, std::string_view name) {
    std::string start = " ";
    start.append(name).append("=\"");
    const std::size_t found = svg.find(start);
    double length = 0;
    if (found != std::string_view::npos) {
        const std::string_view text = svg.substr(found + start.size());
        std::from_chars(text.data(), text.data() + text.size(), length);
    }
    return length;
}

/// The JPEG file that the helper makes of the one at `path`.
std::optional<EncodedImage> encoded(const std::string& path, MediaRequest request, double quality) {
    request.operation = MediaOperation::encodePicture;
    request.quality = encoderQuality(quality);
    const auto answer = MediaServiceClient::shared().perform(path, request);
    if (!answer)
        return std::nullopt;
    return EncodedImage(answer.value().file, answer.value().response.fileSize);
}

} // namespace

EncodedImage::EncodedImage(std::shared_ptr<const SharedMemory> memory, std::size_t size)
    : memory_(std::move(memory)), bytes_(std::as_bytes(memory_->bytes()).first(size)) {}

void EncodedImage::release(std::size_t count) const {
    memory_->release(count);
}

std::optional<UIImage> UIImage::named(std::string_view name) {
    const auto asset = AssetCatalogue::image(name);
    if (!asset)
        return std::nullopt;
    UIImage image;
    image.assetName_ = name;
    image.width_ = lengthAttribute(asset->svg, "width");
    image.height_ = lengthAttribute(asset->svg, "height");
    return image;
}

std::optional<UIImage> UIImage::contentsOfFile(const std::string& path, PictureBounds bounds) {
    if (bounds.longerSide <= 0)
        return std::nullopt;
    MediaRequest request;
    request.operation = MediaOperation::decodePicture;
    request.setBounds(bounds);
    auto answer = MediaServiceClient::shared().perform(path, request);
    if (!answer)
        return std::nullopt;
    return fromPixels(std::move(answer.value().pixels));
}

std::optional<UIImage> UIImage::contentsOfOpenFile(FileDescriptor file, PictureBounds bounds) {
    MediaRequest request;
    request.operation = MediaOperation::decodePicture;
    request.setBounds(bounds);
    request.wholeOnly = true;
    auto answer = MediaServiceClient::shared().perform(pathOf(file), request);
    if (!answer)
        return std::nullopt;
    UIImage image = fromPixels(std::move(answer.value().pixels));
    image.original_ = std::make_shared<const FileDescriptor>(std::move(file));
    return image;
}

UIImage UIImage::fromPixels(PixelBuffer pixels) {
    const bool fits = pixels.width >= 0 && pixels.height >= 0 &&
                      pixels.bytes.size() == std::size_t{4} * static_cast<std::size_t>(pixels.width) *
                                                 static_cast<std::size_t>(pixels.height);
    if (!fits)
        fatalError("UIImage: pixels do not have the size that they claim");
    UIImage image;
    image.width_ = pixels.width;
    image.height_ = pixels.height;
    image.pixels_ = std::make_shared<const PixelBuffer>(std::move(pixels));
    return image;
}

UIImage UIImage::withRenderingMode(RenderingMode mode) const {
    UIImage image = *this;
    image.renderingMode_ = mode;
    return image;
}

UIImage UIImage::imageFlippedForRightToLeftLayoutDirection() const {
    UIImage image = *this;
    image.flipsForRightToLeftLayoutDirection_ = true;
    return image;
}

std::optional<EncodedImage> UIImage::jpegData(double quality) const {
    return original_ ? encoded(pathOf(*original_), {}, quality) : std::nullopt;
}

std::optional<EncodedImage> UIImage::jpegDataOfFile(const std::string& path, PictureBounds bounds,
                                                    double quality) {
    MediaRequest request;
    request.setBounds(bounds);
    return encoded(path, request, quality);
}

} // namespace sela
