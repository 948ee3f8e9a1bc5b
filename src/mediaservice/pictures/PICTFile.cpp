#include "mediaservice/pictures/PICTFile.h"

#include <algorithm>

namespace sela {

namespace {

// An application's own header, then the picture: its size, its frame, its version.
constexpr std::int64_t pictureStart = 512;
constexpr std::int64_t versionStart = pictureStart + 10;

constexpr int mostOperations = 100'000;

/// Reads numbers one after another; beyond the end of the file they are zeros.
class Cursor {
public:
    Cursor(const InputFile& file, std::int64_t offset) : file_(file), offset_(offset) {}

    std::uint32_t number(std::size_t size) {
        std::array<std::byte, 4> bytes{};
        const auto wanted = std::span(bytes).first(size);
        isAtEnd_ = isAtEnd_ || file_.readAt(offset_, wanted) != size;
        offset_ += static_cast<std::int64_t>(size);
        std::uint32_t number = 0;
        for (const std::byte byte : wanted)
            number = number << 8 | std::to_integer<std::uint32_t>(byte);
        return isAtEnd_ ? 0 : number;
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t word() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t longWord() { return number(4); }
    void skip(std::int64_t size) { offset_ += size; }

    /// The size of a rectangle: top, left, bottom, right.
    PictureSize rectangle() {
        const auto top = static_cast<std::int16_t>(word());
        const auto left = static_cast<std::int16_t>(word());
        const auto bottom = static_cast<std::int16_t>(word());
        const auto right = static_cast<std::int16_t>(word());
        return {right - left, bottom - top};
    }

    std::int64_t offset() const { return offset_; }
    bool isAtEnd() const { return isAtEnd_ || offset_ > file_.size(); }

private:
    const InputFile& file_;
    std::int64_t offset_;
    bool isAtEnd_ = false;
};

// The operations that are evaluated.
enum Operation : std::uint32_t {
    bitsRectangle = 0x90,
    bitsRegion = 0x91,
    packedBitsRectangle = 0x98,
    packedBitsRegion = 0x99,
    directBitsRectangle = 0x9A,
    directBitsRegion = 0x9B,
    endOfPicture = 0xFF,
    compressedQuickTime = 0x8200,
};

bool drawsBitmap(std::uint32_t operation) {
    switch (operation) {
    case bitsRectangle:
    case bitsRegion:
    case packedBitsRectangle:
    case packedBitsRegion:
    case directBitsRectangle:
    case directBitsRegion:
        return true;
    default:
        return false;
    }
}

void skipSized(Cursor& cursor, std::size_t sizeOfSize) {
    const std::int64_t size = cursor.number(sizeOfSize);
    cursor.skip(size);
}

/// A region or polygon, whose size counts itself.
void skipRegion(Cursor& cursor) {
    cursor.skip(std::max<std::int64_t>(0, std::int64_t{cursor.word()} - 2));
}

/// What follows an operation that draws no pixels.
struct Operands {
    enum class Rest { none, sized8, sized16, sized32, region, pattern };

    std::uint32_t first; ///< first opcode of the range, which ends before the next row's
    int bytes;
    Rest rest = Rest::none; ///< after those bytes
};

constexpr auto operandsOfOperations = [] {
    using enum Operands::Rest;
    return std::to_array<Operands>({
        {0x00, 0},          {0x01, 0, region},  {0x02, 8},          {0x03, 2},
        {0x04, 1},          {0x05, 2},          {0x06, 4},          {0x08, 2},
        {0x09, 8},          {0x0B, 4},          {0x0D, 2},          {0x0E, 4},
        {0x10, 8},          {0x11, 1},          {0x12, 0, pattern}, {0x15, 2},
        {0x17, 0},          {0x1A, 6},          {0x1C, 0},          {0x1D, 6},
        {0x1E, 0},          {0x1F, 6},          {0x20, 8},          {0x21, 4},
        {0x22, 6},          {0x23, 2},          {0x24, 0, sized16}, {0x28, 4, sized8},
        {0x29, 1, sized8},  {0x2B, 2, sized8},  {0x2C, 0, sized16}, {0x30, 8},
        {0x38, 0},          {0x40, 8},          {0x48, 0},          {0x50, 8},
        {0x58, 0},          {0x60, 12},         {0x68, 4},          {0x70, 0, region},
        {0x78, 0},          {0x80, 0, region},  {0x88, 0},          {0x90, 0, sized16},
        {0xA0, 2},          {0xA1, 2, sized16}, {0xA2, 0, sized16}, {0xB0, 0},
        {0xD0, 0, sized32}, {0x100, 0},         {0x8000, 0},        {0x8100, 0, sized32},
    });
}();

/// Skips what follows an operation; false when it cannot be skipped.
bool skipOperands(Cursor& cursor, std::uint32_t operation) {
    // The upper byte of these opcodes is a number of words.
    if (operation >= 0x100 && operation < 0x8000)
        cursor.skip(std::int64_t{2} * (operation >> 8));
    const auto next = std::ranges::upper_bound(operandsOfOperations, operation, {}, &Operands::first);
    const Operands& operands = *(next - 1);
    cursor.skip(operands.bytes);
    switch (operands.rest) {
    case Operands::Rest::none:
        return true;
    case Operands::Rest::sized8:
        skipSized(cursor, 1);
        return true;
    case Operands::Rest::sized16:
        skipSized(cursor, 2);
        return true;
    case Operands::Rest::sized32:
        skipSized(cursor, 4);
        return true;
    case Operands::Rest::region:
        skipRegion(cursor);
        return true;
    case Operands::Rest::pattern: // of pixels, with a description of its own
        return false;
    }
    return false;
}

void readPalette(Cursor& cursor, PICTBitmap& bitmap) {
    cursor.skip(4); // seed
    const bool entriesAreInOrder = (cursor.word() & 0x8000) != 0;
    const std::uint32_t last = cursor.word();
    for (std::uint32_t i = 0; i <= last && !cursor.isAtEnd(); ++i) {
        const std::uint16_t value = cursor.word();
        PICTBitmap::Colour colour{};
        for (std::uint8_t& channel : colour)
            channel = static_cast<std::uint8_t>(cursor.word() >> 8);
        const std::uint32_t index = entriesAreInOrder ? i : value;
        if (index < bitmap.palette.size())
            bitmap.palette[index] = colour;
    }
}

PICTBitmap::Packing packingOf(std::uint32_t type, const PICTBitmap& bitmap) {
    using Packing = PICTBitmap::Packing;
    constexpr std::size_t leastPackedRow = 8;
    if (bitmap.rowSize < leastPackedRow)
        return Packing::none;
    if (bitmap.bitsPerPixel <= 8)
        return Packing::bytes;
    if (type == 1)
        return Packing::none;
    if (bitmap.bitsPerPixel == 16)
        return Packing::words;
    return type == 2 ? Packing::noPadding : Packing::planes;
}

/// Reads the description of pixels up to where they start; absent when it is invalid.
std::optional<PICTBitmap> readBitmap(Cursor& cursor, std::uint32_t operation) {
    const bool isDirect = operation == directBitsRectangle || operation == directBitsRegion;
    if (isDirect)
        cursor.skip(4); // an address
    PICTBitmap bitmap;
    const std::uint16_t rowBytes = cursor.word();
    bitmap.rowSize = rowBytes & 0x3FFF;
    bitmap.size = cursor.rectangle();
    std::uint32_t packType = 0;
    if ((rowBytes & 0x8000) != 0) {
        cursor.skip(2); // version
        packType = cursor.word();
        cursor.skip(4 + 4 + 4 + 2); // packed size, resolutions, kind of pixels
        bitmap.bitsPerPixel = cursor.word();
        bitmap.planes = cursor.word();
        cursor.skip(2 + 4 + 4 + 4); // size of a component, planes, table, reserved
    }
    const bool isIndexed = bitmap.bitsPerPixel == 1 || bitmap.bitsPerPixel == 2 || bitmap.bitsPerPixel == 4 ||
                           bitmap.bitsPerPixel == 8;
    if (isDirect ? bitmap.bitsPerPixel != 16 && bitmap.bitsPerPixel != 32 : !isIndexed)
        return std::nullopt;
    if (isIndexed) {
        bitmap.palette.assign(std::size_t{1} << bitmap.bitsPerPixel, {0, 0, 0});
        if ((rowBytes & 0x8000) != 0)
            readPalette(cursor, bitmap);
        else
            bitmap.palette.front() = {255, 255, 255};
    }
    cursor.skip(8 + 8 + 2); // where from, where to, how
    if (operation == bitsRegion || operation == packedBitsRegion || operation == directBitsRegion)
        skipRegion(cursor);
    bitmap.packing = packingOf(packType, bitmap);
    if (operation == bitsRectangle || operation == bitsRegion)
        bitmap.packing = PICTBitmap::Packing::none;
    bitmap.pixels = cursor.offset();
    const auto leastRowSize = (static_cast<std::int64_t>(bitmap.size.width) * bitmap.bitsPerPixel + 7) / 8;
    const bool isSound =
        isDecodableSize(bitmap.size) &&
        (bitmap.planes == 3 || bitmap.planes == 4 || isIndexed || bitmap.bitsPerPixel == 16) &&
        static_cast<std::int64_t>(bitmap.rowSize) >= leastRowSize && !cursor.isAtEnd();
    return isSound ? std::optional(std::move(bitmap)) : std::nullopt;
}

void skipPixels(Cursor& cursor, const PICTBitmap& bitmap) {
    const auto rowSize = static_cast<std::int64_t>(bitmap.rowSize);
    switch (bitmap.packing) {
    case PICTBitmap::Packing::none:
        cursor.skip(rowSize * bitmap.size.height);
        return;
    case PICTBitmap::Packing::noPadding:
        cursor.skip(rowSize * 3 / 4 * bitmap.size.height);
        return;
    case PICTBitmap::Packing::bytes:
    case PICTBitmap::Packing::words:
    case PICTBitmap::Packing::planes:
        for (int row = 0; row < bitmap.size.height && !cursor.isAtEnd(); ++row)
            skipSized(cursor, bitmap.rowSize > 250 ? 2 : 1);
        return;
    }
}

/// The JPEG file that a QuickTime operation carries; absent when it carries something else.
std::optional<PICTCompressedImage> readCompressedImage(Cursor cursor) {
    const std::int64_t size = cursor.longWord();
    const std::int64_t end = cursor.offset() + size;
    cursor.skip(2 + 36); // version, matrix
    const std::int64_t matteSize = cursor.longWord();
    cursor.skip(8 + 2 + 8 + 4); // matte's rectangle, mode, source, accuracy
    const std::int64_t maskSize = cursor.longWord();
    if (matteSize != 0) {
        const std::int64_t description = cursor.longWord();
        cursor.skip(description - 4 + matteSize);
    }
    cursor.skip(maskSize);
    const std::int64_t descriptionStart = cursor.offset();
    const std::int64_t descriptionSize = cursor.longWord();
    constexpr std::uint32_t jpeg = 0x6A706567;
    if (cursor.longWord() != jpeg)
        return std::nullopt;
    cursor.skip(4 + 2 + 2 + 2 + 2 + 4 + 4 + 4); // reserved, reference, version, vendor, qualities
    PICTCompressedImage image;
    image.size.width = cursor.word();
    image.size.height = cursor.word();
    image.start = descriptionStart + descriptionSize;
    image.end = end;
    if (!isDecodableSize(image.size) || cursor.isAtEnd() || image.start >= end)
        return std::nullopt;
    return image;
}

std::int64_t area(PictureSize size) {
    return std::int64_t{size.width} * size.height;
}

} // namespace

bool PICTFile::isOne(const InputFile& file) {
    Cursor cursor(file, versionStart);
    const std::uint32_t version = cursor.longWord();
    return version == 0x001102FF || version >> 16 == 0x1101;
}

std::optional<PICTFile> PICTFile::read(const InputFile& file) {
    if (!isOne(file))
        return std::nullopt;
    PICTFile picture;
    Cursor cursor(file, pictureStart + 2);
    picture.frame = cursor.rectangle();
    const bool isFirstVersion = cursor.byte() == 0x11;
    cursor.skip(isFirstVersion ? 1 : 3);
    std::int64_t largest = 0;
    for (int i = 0; i < mostOperations && !cursor.isAtEnd(); ++i) {
        if (!isFirstVersion)
            cursor.skip(cursor.offset() % 2);
        const std::uint32_t operation = cursor.number(isFirstVersion ? 1 : 2);
        if (operation == endOfPicture)
            break;
        if (drawsBitmap(operation)) {
            auto bitmap = readBitmap(cursor, operation);
            if (!bitmap)
                break;
            skipPixels(cursor, *bitmap);
            if (area(bitmap->size) > largest) {
                largest = area(bitmap->size);
                picture.bitmap = std::move(bitmap);
                picture.image.reset();
            }
            continue;
        }
        if (operation == compressedQuickTime) {
            const auto image = readCompressedImage(cursor);
            if (image && area(image->size) > largest) {
                largest = area(image->size);
                picture.image = image;
                picture.bitmap.reset();
            }
        }
        if (!skipOperands(cursor, operation))
            break;
    }
    return largest > 0 ? std::optional(std::move(picture)) : std::nullopt;
}

} // namespace sela
