#include "mediaservice/pictures/BMPRuns.h"

#include <algorithm>
#include <array>
#include <vector>

namespace sela {

namespace {

// The escape codes after a length of zero; from 3 on the code is a number of pixels that are stored one by
// one.
constexpr int endOfRow = 0;
constexpr int endOfBitmap = 1;
constexpr int moved = 2;

// A run of two bytes covers at most 255 pixels. The limit leaves more than as many again for skipped pixels.
constexpr std::int64_t mostPixelsPerByte = 512;

class Runs {
public:
    Runs(const InputFile& file, const BMPHeader& header,
         const std::function<void(const std::uint8_t* row)>& addRow)
        : file_(file), header_(header), addRow_(addRow), offset_(header.pixels),
          row_(std::size_t{4} * static_cast<std::size_t>(header.size.width)) {}

    bool read() {
        while (rows_ < header_.size.height) {
            const int length = nextByte();
            const int value = length == 0 ? nextByte() : 0;
            if (isCut_)
                // Some writers omit the end mark after the last row.
                return rows_ == header_.size.height - 1 && column_ >= header_.size.width && finishRow();
            if (length > 0)
                addRun(length);
            else if (value == endOfRow)
                finishRow();
            else if (value == endOfBitmap)
                return finishRow();
            else if (value == moved)
                move();
            else
                addPixels(value);
        }
        return true;
    }

private:
    int nextByte() {
        if (place_ == filled_) {
            filled_ = file_.readAt(offset_, buffer_);
            offset_ += static_cast<std::int64_t>(filled_);
            place_ = 0;
            isCut_ = isCut_ || filled_ == 0;
        }
        return isCut_ ? 0 : std::to_integer<int>(buffer_[place_++]);
    }

    void addPixel(const BMPHeader::Colour& colour) {
        if (column_ >= header_.size.width)
            return;
        std::uint8_t* out = row_.data() + std::size_t{4} * static_cast<std::size_t>(column_++);
        std::ranges::copy(colour, out);
        out[3] = 255;
    }

    const BMPHeader::Colour& paletteColour(int index) const {
        return header_.palette[static_cast<std::size_t>(index)];
    }

    BMPHeader::Colour nextColour() {
        BMPHeader::Colour colour{};
        for (const std::size_t channel : {2, 1, 0})
            colour[channel] = static_cast<std::uint8_t>(nextByte());
        return colour;
    }

    void addRun(int length) {
        if (header_.bitsPerPixel == 24) {
            const BMPHeader::Colour colour = nextColour();
            for (int i = 0; i < length; ++i)
                addPixel(colour);
            return;
        }
        const int value = nextByte();
        for (int i = 0; i < length; ++i)
            addPixel(paletteColour(header_.bitsPerPixel == 8 ? value : i % 2 == 0 ? value >> 4 : value & 15));
    }

    /// Pixels one by one, filled up to 16 bits.
    void addPixels(int count) {
        int bytes = 0;
        if (header_.bitsPerPixel == 24) {
            bytes = 3 * count;
            for (int i = 0; i < count; ++i)
                addPixel(nextColour());
        } else if (header_.bitsPerPixel == 8) {
            bytes = count;
            for (int i = 0; i < count; ++i)
                addPixel(paletteColour(nextByte()));
        } else {
            bytes = (count + 1) / 2;
            for (int i = 0, value = 0; i < count; ++i) {
                value = i % 2 == 0 ? nextByte() : value << 4;
                addPixel(paletteColour(value >> 4 & 15));
            }
        }
        if (bytes % 2 != 0)
            nextByte();
    }

    void move() {
        const int right = nextByte();
        const int rows = nextByte();
        const int column = std::min(column_ + right, header_.size.width);
        for (int i = 0; i < rows && rows_ < header_.size.height; ++i)
            finishRow();
        column_ = column;
    }

    bool finishRow() {
        addRow_(row_.data());
        std::ranges::fill(row_, std::uint8_t{0});
        column_ = 0;
        ++rows_;
        return true;
    }

    const InputFile& file_;
    const BMPHeader& header_;
    const std::function<void(const std::uint8_t* row)>& addRow_;
    std::int64_t offset_;
    std::array<std::byte, 16 << 10> buffer_;
    std::size_t place_ = 0;
    std::size_t filled_ = 0;
    bool isCut_ = false;
    std::vector<std::uint8_t> row_;
    int column_ = 0;
    int rows_ = 0;
};

} // namespace

bool readBMPRuns(const InputFile& file, const BMPHeader& header,
                 const std::function<void(const std::uint8_t* row)>& addRow) {
    const std::int64_t pixels = std::int64_t{header.size.width} * header.size.height;
    if (pixels / mostPixelsPerByte > file.size() - header.pixels)
        return false;
    return Runs(file, header, addRow).read();
}

} // namespace sela
