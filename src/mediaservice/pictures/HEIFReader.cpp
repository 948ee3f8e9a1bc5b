#include "mediaservice/pictures/HEIFReader.h"

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/Premultiplication.h"
#include "mediaservice/pictures/YCbCrConversion.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include <libheif/heif.h>

namespace sela {

namespace {

// The side of the square that bounds a picture's area: 144 megapixels.
constexpr int areaLimitSide = 12000;
constexpr int decodingThreads = 2;
constexpr int mostThumbnails = 16;

template<auto release>
struct Release {
    template<class Object>
    void operator()(Object* object) const {
        release(object);
    }
};

using Context = std::unique_ptr<heif_context, Release<&heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<&heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<&heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<&heif_decoding_options_free>>;
using ColourCoding = std::unique_ptr<heif_color_profile_nclx, Release<&heif_nclx_color_profile_free>>;

struct Input {
    const InputFile& file;
    std::int64_t offset;

    static Input& of(void* userData) { return *static_cast<Input*>(userData); }
};

constexpr heif_reader reader{
    1,
    [](void* userData) { return Input::of(userData).offset; },
    [](void* buffer, std::size_t size, void* userData) {
        Input& input = Input::of(userData);
        const std::span bytes(static_cast<std::byte*>(buffer), size);
        const bool whole = input.file.readAt(input.offset, bytes) == size;
        input.offset += static_cast<std::int64_t>(size);
        return whole ? 0 : 1;
    },
    [](std::int64_t offset, void* userData) {
        Input::of(userData).offset = offset;
        return 0;
    },
    [](std::int64_t size, void* userData) {
        return size <= Input::of(userData).file.size() ? heif_reader_grow_status_size_reached
                                                       : heif_reader_grow_status_size_beyond_eof;
    },
};

PictureSize sizeOf(const Handle& handle) {
    return {heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get())};
}

int longerSide(const Handle& handle) {
    return std::max(sizeOf(handle).width, sizeOf(handle).height);
}

/// The smallest thumbnail of the picture that is large enough; null when there is none.
Handle sufficientThumbnail(const Handle& main, int maximumSide) {
    const int wanted = std::min(maximumSide, longerSide(main));
    std::array<heif_item_id, mostThumbnails> identifiers{};
    const int count =
        heif_image_handle_get_list_of_thumbnail_IDs(main.get(), identifiers.data(), mostThumbnails);
    Handle best;
    for (int i = 0; i < count; ++i) {
        heif_image_handle* opened = nullptr;
        if (heif_image_handle_get_thumbnail(main.get(), identifiers[static_cast<std::size_t>(i)], &opened)
                .code != heif_error_Ok)
            continue;
        Handle thumbnail(opened);
        if (longerSide(thumbnail) >= wanted && (!best || longerSide(thumbnail) < longerSide(best)))
            best = std::move(thumbnail);
    }
    return best;
}

Image decode(const Handle& handle, heif_colorspace space, heif_chroma chroma) {
    const Options options(heif_decoding_options_alloc());
    options->strict_decoding = 1;
    options->convert_hdr_to_8bit = space == heif_colorspace_RGB;
    heif_image* image = nullptr;
    if (heif_decode_image(handle.get(), &image, space, chroma, options.get()).code != heif_error_Ok)
        return nullptr;
    return Image(image);
}

ColourCoding colourCoding(const Handle& handle, const heif_image* image) {
    heif_color_profile_nclx* coding = nullptr;
    if (image && heif_image_get_nclx_color_profile(image, &coding).code == heif_error_Ok)
        return ColourCoding(coding);
    if (heif_image_handle_get_nclx_color_profile(handle.get(), &coding).code == heif_error_Ok)
        return ColourCoding(coding);
    return nullptr;
}

/// One plane of samples of 8 to 16 bits, read as 8 bits.
class Plane {
public:
    Plane(const heif_image* image, heif_channel channel)
        : width_(heif_image_get_width(image, channel)), height_(heif_image_get_height(image, channel)),
          bits_(heif_image_get_bits_per_pixel_range(image, channel)),
          samples_(heif_image_get_plane_readonly(image, channel, &stride_)) {}

    bool exists() const { return samples_ && width_ > 0 && height_ > 0 && bits_ >= 8 && bits_ <= 16; }

    /// Writes row `y` of `fullHeight` into every fourth byte of `out`, stretched to its pixels.
    void copyRow(int y, PictureSize full, std::uint8_t* out) const {
        const int row = std::min(static_cast<int>(std::int64_t{y} * height_ / full.height), height_ - 1);
        const std::uint8_t* samples = samples_ + static_cast<std::ptrdiff_t>(row) * stride_;
        const int shift = width_ < full.width ? 1 : 0;
        if (bits_ == 8) {
            for (int x = 0; x < full.width; ++x)
                out[4 * x] = samples[std::min(x >> shift, width_ - 1)];
            return;
        }
        for (int x = 0; x < full.width; ++x) {
            std::uint16_t sample = 0;
            __builtin_memcpy(&sample, samples + 2 * std::min(x >> shift, width_ - 1), sizeof sample);
            out[4 * x] = static_cast<std::uint8_t>(sample >> (bits_ - 8));
        }
    }

    PictureSize size() const { return {width_, height_}; }

private:
    int width_;
    int height_;
    int bits_;
    int stride_ = 0;
    const std::uint8_t* samples_;
};

/// Scales the planes as they are and brings the few pixels that are left to RGB: half the memory and less
/// time than a picture of RGB in full size.
std::optional<PixelBuffer> readPlanes(const Handle& handle, int maximumSide) {
    // Asked for as nearly every encoder stores it, so that the library has nothing to convert.
    const Image image = decode(handle, heif_colorspace_YCbCr, heif_chroma_420);
    if (!image)
        return std::nullopt;
    const Plane luma(image.get(), heif_channel_Y);
    const Plane blue(image.get(), heif_channel_Cb);
    const Plane red(image.get(), heif_channel_Cr);
    if (!luma.exists())
        return std::nullopt;
    const PictureSize size = luma.size();
    AreaScaler scaler(size, fitted(size, maximumSide));
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(size.width));
    for (std::size_t i = 0; i < row.size(); i += 4) {
        row[i + 1] = row[i + 2] = 128;
        row[i + 3] = 255;
    }
    for (int y = 0; y < size.height; ++y) {
        luma.copyRow(y, size, row.data());
        if (blue.exists() && red.exists()) {
            blue.copyRow(y, size, row.data() + 1);
            red.copyRow(y, size, row.data() + 2);
        }
        scaler.addRow(row.data());
    }
    PixelBuffer pixels = scaler.take();
    const ColourCoding coding = colourCoding(handle, image.get());
    convertYCbCr(pixels.bytes, coding ? static_cast<int>(coding->matrix_coefficients) : 6,
                 !coding || coding->full_range_flag);
    return pixels;
}

/// Lets the library make RGB of rare kinds of pictures.
std::optional<PixelBuffer> readInterleaved(const Handle& handle, int maximumSide) {
    const Image image = decode(handle, heif_colorspace_RGB, heif_chroma_interleaved_RGBA);
    int stride = 0;
    const std::uint8_t* rows =
        image ? heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride) : nullptr;
    if (!rows)
        return std::nullopt;
    const PictureSize size{heif_image_get_width(image.get(), heif_channel_interleaved),
                           heif_image_get_height(image.get(), heif_channel_interleaved)};
    const bool premultiplied = heif_image_handle_is_premultiplied_alpha(handle.get());
    AreaScaler scaler(size, fitted(size, maximumSide));
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(size.width));
    for (int y = 0; y < size.height; ++y) {
        std::copy_n(rows + static_cast<std::ptrdiff_t>(y) * stride, row.size(), row.begin());
        if (!premultiplied)
            premultiply(row);
        scaler.addRow(row.data());
    }
    return scaler.take();
}

Data profileOf(const Handle& handle) {
    const std::size_t size = heif_image_handle_get_raw_color_profile_size(handle.get());
    if (size == 0 || size > largestProfile)
        return {};
    Data profile(size);
    if (heif_image_handle_get_raw_color_profile(handle.get(), profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

} // namespace

std::optional<DecodedPicture> readHEIF(const InputFile& file, int maximumSide) {
    Input input{file, 0};
    const Context context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), areaLimitSide);
    heif_context_set_max_decoding_threads(context.get(), decodingThreads);
    if (heif_context_read_from_reader(context.get(), &reader, &input, nullptr).code != heif_error_Ok)
        return std::nullopt;
    heif_image_handle* opened = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &opened).code != heif_error_Ok)
        return std::nullopt;
    const Handle main(opened);
    if (!isDecodableSize(sizeOf(main)))
        return std::nullopt;

    const Handle thumbnail = sufficientThumbnail(main, maximumSide);
    const Handle& chosen = thumbnail ? thumbnail : main;
    constexpr auto identityMatrix = heif_matrix_coefficients_RGB_GBR;
    const ColourCoding coding = colourCoding(chosen, nullptr);
    const bool rare = heif_image_handle_has_alpha_channel(chosen.get()) ||
                      (coding && coding->matrix_coefficients == identityMatrix);
    auto pixels = rare ? std::nullopt : readPlanes(chosen, maximumSide);
    if (!pixels)
        pixels = readInterleaved(chosen, maximumSide);
    if (!pixels)
        return std::nullopt;
    DecodedPicture picture;
    picture.pixels = std::move(*pixels);
    picture.profile = profileOf(chosen);
    if (picture.profile.empty())
        picture.profile = profileOf(main);
    return picture;
}

} // namespace sela
