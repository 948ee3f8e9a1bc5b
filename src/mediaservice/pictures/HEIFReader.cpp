#include "mediaservice/pictures/HEIFReader.h"

#include "mediaservice/pictures/ColourProfile.h"
#include "mediaservice/pictures/HEIFReferences.h"
#include "mediaservice/pictures/Premultiplication.h"
#include "mediaservice/pictures/ToneMapping.h"
#include "mediaservice/pictures/YCbCrConversion.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

#include <libheif/heif.h>

namespace sela {

namespace {

// The most pixels that are decoded: with more, a picture may not fit into the memory that a helper gets (one
// of 8 bits takes 4.5 bytes a pixel, a deeper one twice as much; finer colour and transparency more). The
// largest sensors of phones have 200 megapixels, which take longer than anybody should wait where a thumbnail
// serves.
constexpr std::int64_t mostDecodedPixels = std::int64_t{144} * 1000 * 1000;
constexpr std::int64_t mostPlainPixels = std::int64_t{200} * 1000 * 1000; ///< 8 bits, opaque, no thumbnail

// The library's own limit is the side of a square; beyond it, it refuses the whole file, thumbnails included,
// so it is set to that of the largest picture that is opened.
constexpr int libraryLimitSide = 22627;
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

/// The file as the library sees it. What describes the picture (EXIF and the like) is not needed, and the
/// library refuses files of phones whose description belongs to the picture and its gain map together, so it
/// sees references of an unknown type there.
class HEIFInput {
public:
    explicit HEIFInput(const InputFile& file) : file_(file), hidden_(descriptionReferences(file)) {}

    static heif_reader reader() {
        heif_reader made{};
        made.reader_api_version = 1;
        made.get_position = [](void* input) { return of(input).offset_; };
        made.read = [](void* buffer, std::size_t size, void* input) {
            return of(input).read({static_cast<std::byte*>(buffer), size}) ? 0 : 1;
        };
        made.seek = [](std::int64_t offset, void* input) {
            of(input).offset_ = offset;
            return 0;
        };
        made.wait_for_file_size = [](std::int64_t size, void* input) {
            return size <= of(input).file_.size() ? heif_reader_grow_status_size_reached
                                                  : heif_reader_grow_status_size_beyond_eof;
        };
        return made;
    }

private:
    static HEIFInput& of(void* input) { return *static_cast<HEIFInput*>(input); }

    bool read(std::span<std::byte> bytes) {
        const bool whole = file_.readAt(offset_, bytes) == bytes.size();
        constexpr std::string_view unknownType = "skip";
        for (const std::int64_t place : hidden_)
            for (std::size_t i = 0; i < unknownType.size(); ++i) {
                const std::int64_t index = place + static_cast<std::int64_t>(i) - offset_;
                if (index >= 0 && index < static_cast<std::int64_t>(bytes.size()))
                    bytes[static_cast<std::size_t>(index)] = static_cast<std::byte>(unknownType[i]);
            }
        offset_ += static_cast<std::int64_t>(bytes.size());
        return whole;
    }

    const InputFile& file_;
    const std::vector<std::int64_t> hidden_;
    std::int64_t offset_ = 0;
};

PictureSize sizeOf(const Handle& handle) {
    return {heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get())};
}

int longerSide(const Handle& handle) {
    return std::max(sizeOf(handle).width, sizeOf(handle).height);
}

/// Whether a thumbnail has the picture's shape, as far as whole pixels allow, and is not the larger one.
bool isTrueTo(PictureSize picture, PictureSize thumbnail) {
    const std::int64_t widened = std::int64_t{thumbnail.width} * picture.height;
    const std::int64_t heightened = std::int64_t{thumbnail.height} * picture.width;
    return thumbnail.width >= 1 && thumbnail.height >= 1 && thumbnail.width <= picture.width &&
           thumbnail.height <= picture.height &&
           std::abs(widened - heightened) <= std::max(picture.width, picture.height);
}

/// The thumbnails that match the picture, the smallest first.
std::vector<Handle> thumbnailsOf(const Handle& main) {
    std::array<heif_item_id, mostThumbnails> identifiers{};
    const int count =
        heif_image_handle_get_list_of_thumbnail_IDs(main.get(), identifiers.data(), mostThumbnails);
    std::vector<Handle> thumbnails;
    for (int i = 0; i < count; ++i) {
        heif_image_handle* opened = nullptr;
        if (heif_image_handle_get_thumbnail(main.get(), identifiers[static_cast<std::size_t>(i)], &opened)
                .code != heif_error_Ok)
            continue;
        Handle thumbnail(opened);
        if (isTrueTo(sizeOf(main), sizeOf(thumbnail)))
            thumbnails.push_back(std::move(thumbnail));
    }
    std::ranges::sort(thumbnails, {}, longerSide);
    return thumbnails;
}

/// The form in which the library gives a picture, always in planes.
enum class Form {
    cheapest, ///< as it is coded, or in red, green and blue where a library has it in no other form
    rgb,
};

Image decode(const Handle& handle, Form form) {
    const Options options(heif_decoding_options_alloc());
    options->strict_decoding = 1;
    const bool isRGB = form == Form::rgb;
    heif_image* image = nullptr;
    if (heif_decode_image(handle.get(), &image, isRGB ? heif_colorspace_RGB : heif_colorspace_undefined,
                          isRGB ? heif_chroma_444 : heif_chroma_undefined, options.get())
            .code != heif_error_Ok)
        return nullptr;
    return Image(image);
}

/// The file's statement goes before that of the coded picture in it, which newer libraries return of an
/// image.
ColourCoding colourCoding(const Handle& handle, const heif_image* image) {
    heif_color_profile_nclx* coding = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle.get(), &coding).code == heif_error_Ok)
        return ColourCoding(coding);
    if (image && heif_image_get_nclx_color_profile(image, &coding).code == heif_error_Ok)
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

    /// Writes row `y` of a picture of that size into every fourth byte of `out`; a plane of fewer columns or
    /// rows is stretched.
    void copyRow(int y, PictureSize full, std::uint8_t* out) const {
        const int row = std::min(static_cast<int>(std::int64_t{y} * height_ / full.height), height_ - 1);
        const std::uint8_t* samples = samples_ + static_cast<std::ptrdiff_t>(row) * stride_;
        const int shift = width_ < full.width ? 1 : 0;
        if (bits_ == 8) {
            for (int x = 0; x < full.width; ++x, out += 4)
                *out = samples[std::min(x >> shift, width_ - 1)];
            return;
        }
        const auto* wide = reinterpret_cast<const std::uint16_t*>(samples);
        for (int x = 0; x < full.width; ++x, out += 4)
            *out = static_cast<std::uint8_t>(wide[std::min(x >> shift, width_ - 1)] >> (bits_ - 8));
    }

    PictureSize size() const { return {width_, height_}; }

private:
    int width_;
    int height_;
    int bits_;
    int stride_ = 0;
    const std::uint8_t* samples_;
};

/// Where an image's pixels go.
struct Destination {
    PictureTarget& target;
    Data profile;                          ///< of the image
    std::optional<PictureSize> onlyOfSize; ///< an image that turns out to have another size is not passed on
    bool nothingElseServes = false;        ///< whether there is no thumbnail to take instead
};

Data profileOf(const Handle& handle) {
    const std::size_t size = heif_image_handle_get_raw_color_profile_size(handle.get());
    if (size == 0 || size > largestProfile)
        return {};
    Data profile(size);
    if (heif_image_handle_get_raw_color_profile(handle.get(), profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

/// To sRGB by the coding that the file states (null: that of JPEG): from the high dynamic range in it, else
/// by the profile.
PixelConversion conversion(bool isRGB, const heif_color_profile_nclx* coding, const Data& profile) {
    const auto hdr = coding ? HDRColours::of(static_cast<int>(coding->transfer_characteristics),
                                             static_cast<int>(coding->color_primaries))
                            : std::nullopt;
    PixelConversion fromRGB = hdr ? conversionToSRGB(*hdr) : conversionToSRGB(PixelColours::rgb, profile);
    if (isRGB)
        return fromRGB;
    const int matrix = coding ? static_cast<int>(coding->matrix_coefficients) : 6;
    const bool fullRange = !coding || coding->full_range_flag;
    return [=](std::span<std::uint8_t> pixels) {
        convertYCbCr(pixels, matrix, fullRange);
        if (fromRGB)
            fromRGB(pixels);
    };
}

/// Passes the planes on row by row, without making another full-size picture of them.
bool readPlanes(const Handle& handle, Form form, const Destination& destination) {
    const Image image = decode(handle, form);
    if (!image)
        return false;
    const bool isRGB = heif_image_get_colorspace(image.get()) == heif_colorspace_RGB;
    const auto plane = [&](heif_channel rgb, heif_channel coded) {
        return Plane(image.get(), isRGB ? rgb : coded);
    };
    const std::array planes{plane(heif_channel_R, heif_channel_Y), plane(heif_channel_G, heif_channel_Cb),
                            plane(heif_channel_B, heif_channel_Cr), Plane(image.get(), heif_channel_Alpha)};
    const PictureSize size = planes[0].size();
    if (!planes[0].exists() || size != destination.onlyOfSize.value_or(size))
        return false;
    const bool isPremultiplied =
        !planes[3].exists() || heif_image_handle_is_premultiplied_alpha(handle.get());
    const ColourCoding coding = colourCoding(handle, image.get());
    destination.target.begin(PictureRows::of(size, conversion(isRGB, coding.get(), destination.profile)));
    // Without planes of colour it is grey, without one of alpha opaque.
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(size.width), 128);
    for (std::size_t i = 3; i < row.size(); i += 4)
        row[i] = 255;
    for (int y = 0; y < size.height; ++y) {
        for (std::size_t i = 0; i < planes.size(); ++i)
            if (planes[i].exists())
                planes[i].copyRow(y, size, row.data() + i);
        if (!isPremultiplied)
            premultiply(row);
        destination.target.addRow(row.data());
    }
    return true;
}

/// False when it cannot be decoded or is too large.
bool readImage(const Handle& handle, const Destination& destination) {
    constexpr auto identityMatrix = heif_matrix_coefficients_RGB_GBR;
    const ColourCoding coding = colourCoding(handle, nullptr);
    const bool rare = heif_image_handle_has_alpha_channel(handle.get()) ||
                      (coding && coding->matrix_coefficients == identityMatrix);
    const bool plain = !rare && heif_image_handle_get_luma_bits_per_pixel(handle.get()) == 8;
    const PictureSize size = sizeOf(handle);
    if (std::int64_t{size.width} * size.height >
        (plain && destination.nothingElseServes ? mostPlainPixels : mostDecodedPixels))
        return false;
    return (!rare && readPlanes(handle, Form::cheapest, destination)) ||
           readPlanes(handle, Form::rgb, destination);
}

bool readThumbnail(const Handle& thumbnail, const Handle& main, PictureTarget& target) {
    Data profile = profileOf(thumbnail);
    if (profile.empty())
        profile = profileOf(main);
    return readImage(thumbnail, {target, std::move(profile), sizeOf(thumbnail)});
}

} // namespace

bool readHEIF(const InputFile& file, PictureTarget& target) {
    HEIFInput input(file);
    const heif_reader reader = HEIFInput::reader();
    const Context context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), libraryLimitSide);
    heif_context_set_max_decoding_threads(context.get(), decodingThreads);
    if (heif_context_read_from_reader(context.get(), &reader, &input, nullptr).code != heif_error_Ok)
        return false;
    heif_image_handle* opened = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &opened).code != heif_error_Ok)
        return false;
    const Handle main(opened);
    if (!isDecodableSize(sizeOf(main)))
        return false;

    const std::vector<Handle> thumbnails = target.wantsWhole() ? std::vector<Handle>() : thumbnailsOf(main);
    const PictureSize wanted = fitted(sizeOf(main), target.bounds());
    for (const Handle& thumbnail : thumbnails)
        if (longerSide(thumbnail) >= std::max(wanted.width, wanted.height) &&
            readThumbnail(thumbnail, main, target))
            return true;
    if (readImage(main, {target, profileOf(main), std::nullopt, thumbnails.empty()}))
        return true;
    // A blurred picture is better than none.
    return std::any_of(thumbnails.rbegin(), thumbnails.rend(),
                       [&](const Handle& thumbnail) { return readThumbnail(thumbnail, main, target); });
}

} // namespace sela
