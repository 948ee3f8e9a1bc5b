#include "mediaservice/pictures/PNGReader.h"

#include "mediaservice/pictures/ColourProfile.h"
#include "mediaservice/pictures/EXIF.h"
#include "mediaservice/pictures/Premultiplication.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <png.h>

namespace sela {

namespace {

// Limits on text and other ancillary chunks of a picture: size of one and number.
constexpr png_alloc_size_t largestChunk = 8 << 20;
constexpr png_uint_32 mostChunks = 1000;

constexpr std::size_t chunkNameSize = 5; // with the null behind it
constexpr png_byte unreadChunks[] = "tEXt\0zTXt\0iTXt\0sPLT\0hIST\0pCAL\0sCAL";

// The chunk of coding-independent code points: primaries, transfer, matrix and whether the range is full.
// Older versions of the library do not know it.
constexpr png_byte codePointsChunk[] = "cICP";
constexpr std::size_t codePointsSize = 4;

/// libpng on an input file. Its errors come back by longjmp, so the functions that call it keep nothing on
/// the stack that needs a destructor.
class PNGDecompressor {
public:
    explicit PNGDecompressor(const InputFile& file) : file_(file) {}
    ~PNGDecompressor() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PNGDecompressor(const PNGDecompressor&) = delete;
    PNGDecompressor& operator=(const PNGDecompressor&) = delete;

    bool readHeader();
    bool readRows(PictureTarget& target);

    PictureSize size() const {
        return {static_cast<int>(png_get_image_width(png_, info_)),
                static_cast<int>(png_get_image_height(png_, info_))};
    }
    bool isGray() const { return gray_; }
    Data profile();
    Orientation orientation();

    /// The colours of a picture with a high dynamic range; absent for others.
    std::optional<HDRColours> hdrColours();

private:
    [[noreturn]] static void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void read(png_structp png, png_bytep buffer, png_size_t size);

    void addRow(PictureTarget& target, std::uint8_t* row);

    const InputFile& file_;
    std::int64_t offset_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool gray_ = false;
    bool hasAlpha_ = false;
    std::vector<std::uint8_t> pixels_;
    std::vector<png_bytep> rows_;
};

void PNGDecompressor::read(png_structp png, png_bytep buffer, png_size_t size) {
    auto& self = *static_cast<PNGDecompressor*>(png_get_io_ptr(png));
    if (self.file_.readAt(self.offset_, std::as_writable_bytes(std::span(buffer, size))) != size)
        png_error(png, "cut");
    self.offset_ += static_cast<std::int64_t>(size);
}

bool PNGDecompressor::readHeader() {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &fail, [](png_structp, png_const_charp) {});
    info_ = png_ ? png_create_info_struct(png_) : nullptr;
    if (!info_ || setjmp(png_jmpbuf(png_)) != 0)
        return false;
    png_set_read_fn(png_, this, &read);
    // Text chunks can expand a thousandfold when unpacked, and are not used.
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, unreadChunks,
                                sizeof unreadChunks / chunkNameSize);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_ALWAYS, codePointsChunk, 1);
    png_set_user_limits(png_, largestSourceSide, largestSourceSide);
    png_set_chunk_malloc_max(png_, largestChunk);
    png_set_chunk_cache_max(png_, mostChunks);
    png_read_info(png_, info_);
    if (!isDecodableSize(size()))
        return false;

    const int type = png_get_color_type(png_, info_);
    gray_ = (type & PNG_COLOR_MASK_COLOR) == 0;
    hasAlpha_ = (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
    return true;
}

bool PNGDecompressor::readRows(PictureTarget& target) {
    const bool interlaced = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
    const auto height = static_cast<std::size_t>(size().height);
    const std::size_t rowSize = std::size_t{4} * static_cast<std::size_t>(size().width);
    pixels_.resize(rowSize * (interlaced ? height : 1));
    if (interlaced)
        for (std::size_t y = 0; y < height; ++y)
            rows_.push_back(pixels_.data() + y * rowSize);
    if (setjmp(png_jmpbuf(png_)) != 0)
        return false;
    if (interlaced) {
        png_read_image(png_, rows_.data());
        for (const png_bytep row : rows_)
            addRow(target, row);
        return true;
    }
    png_start_read_image(png_);
    for (std::size_t y = 0; y < height; ++y) {
        png_read_row(png_, pixels_.data(), nullptr);
        addRow(target, pixels_.data());
    }
    return true;
}

void PNGDecompressor::addRow(PictureTarget& target, std::uint8_t* row) {
    if (hasAlpha_)
        premultiply({row, std::size_t{4} * static_cast<std::size_t>(size().width)});
    target.addRow(row);
}

Data PNGDecompressor::profile() {
    png_charp name = nullptr;
    png_bytep bytes = nullptr;
    png_uint_32 size = 0;
    int compression = 0;
    if (png_get_iCCP(png_, info_, &name, &compression, &bytes, &size) == 0 || size > largestProfile)
        return {};
    const auto* begin = reinterpret_cast<const std::byte*>(bytes);
    return {begin, begin + size};
}

Orientation PNGDecompressor::orientation() {
    png_uint_32 size = 0;
    png_bytep bytes = nullptr;
    if (png_get_eXIf_1(png_, info_, &size, &bytes) == 0)
        return Orientation::up;
    return orientationOfEXIF({reinterpret_cast<const std::byte*>(bytes), size});
}

std::optional<HDRColours> PNGDecompressor::hdrColours() {
    png_unknown_chunkp chunks = nullptr;
    const int count = png_get_unknown_chunks(png_, info_, &chunks);
    for (const png_unknown_chunk& chunk : std::span(chunks, static_cast<std::size_t>(std::max(count, 0)))) {
        const bool found = std::memcmp(chunk.name, codePointsChunk, sizeof codePointsChunk) == 0;
        if (found && chunk.size == codePointsSize)
            return HDRColours::of(chunk.data[1], chunk.data[0]);
    }
    return std::nullopt;
}

} // namespace

bool readPNG(const InputFile& file, PictureTarget& target) {
    PNGDecompressor decompressor(file);
    if (!decompressor.readHeader())
        return false;
    const PixelColours colours = decompressor.isGray() ? PixelColours::gray : PixelColours::rgb;
    // The code points take precedence over a profile.
    const std::optional<HDRColours> hdr = decompressor.hdrColours();
    target.begin({decompressor.size(), decompressor.size(), decompressor.orientation(),
                  hdr ? conversionToSRGB(*hdr) : conversionToSRGB(colours, decompressor.profile())});
    return decompressor.readRows(target);
}

} // namespace sela
