#include "mediaservice/pictures/JPEGWriter.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include <jpeglib.h>

namespace sela {

namespace {

// Qualities from here on keep the colour of fine red lines (screenshots); others halve it as cameras do.
constexpr int qualityOfWholeColours = 95;

/// EXIF data that holds the orientation alone.
std::array<std::uint8_t, 32> exifOf(Orientation orientation) {
    return {'E', 'x', 'i', 'f',  0,    0, 'M', 'M', 0, 42, 0, 0, 0,
            8,   0,   1,   0x01, 0x12, 0, 3,   0,   0, 0,  1, 0, static_cast<std::uint8_t>(orientation)};
}

} // namespace

/// libjpeg writing into a file, through a window of it that is mapped. Its errors come back by longjmp, so
/// the functions that call it keep nothing on the stack that needs a destructor.
class JPEGWriter::Compressor {
public:
    Compressor(int memory, int quality, PictureRows rows)
        : memory_(memory), quality_(quality), rows_(std::move(rows)),
          row_(std::size_t{4} * static_cast<std::size_t>(rows_.size.width)) {}
    ~Compressor() {
        jpeg_destroy_compress(&compressor_);
        unmap();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    void start();
    void addRow(const std::uint8_t* row);
    std::optional<std::int64_t> finish();

private:
    static constexpr std::size_t windowSize = 4 << 20;

    static Compressor& self(j_compress_ptr common) { return *static_cast<Compressor*>(common->client_data); }
    [[noreturn]] static void fail(j_common_ptr common) {
        std::longjmp(static_cast<Compressor*>(common->client_data)->failure_, 1);
    }

    /// Maps the next window; false when the memory ends before its end.
    bool map();
    void unmap();
    void write(JSAMPROW row);

    const int memory_;
    const int quality_;
    const PictureRows rows_;
    std::vector<std::uint8_t> row_;
    bool failed_ = false;
    std::int64_t offset_ = 0; ///< where the window starts
    void* window_ = MAP_FAILED;
    jpeg_compress_struct compressor_{};
    jpeg_error_mgr errors_{};
    jpeg_destination_mgr destination_{};
    std::jmp_buf failure_;
};

bool JPEGWriter::Compressor::map() {
    const off_t size = ::lseek(memory_, 0, SEEK_END);
    if (size < offset_ + static_cast<std::int64_t>(windowSize))
        return false;
    window_ = ::mmap(nullptr, windowSize, PROT_READ | PROT_WRITE, MAP_SHARED, memory_, offset_);
    if (window_ == MAP_FAILED)
        return false;
    destination_.next_output_byte = static_cast<JOCTET*>(window_);
    destination_.free_in_buffer = windowSize;
    return true;
}

void JPEGWriter::Compressor::unmap() {
    if (window_ != MAP_FAILED)
        ::munmap(window_, windowSize);
    window_ = MAP_FAILED;
}

void JPEGWriter::Compressor::start() {
    compressor_.err = jpeg_std_error(&errors_);
    errors_.error_exit = &fail;
    errors_.output_message = [](j_common_ptr) {};
    compressor_.client_data = this;
    if (setjmp(failure_) != 0) {
        failed_ = true;
        return;
    }
    jpeg_create_compress(&compressor_);
    destination_.init_destination = [](j_compress_ptr compressor) {
        if (!self(compressor).map())
            fail(reinterpret_cast<j_common_ptr>(compressor));
    };
    destination_.empty_output_buffer = [](j_compress_ptr compressor) -> boolean {
        Compressor& writer = self(compressor);
        writer.unmap();
        writer.offset_ += static_cast<std::int64_t>(windowSize);
        if (!writer.map())
            fail(reinterpret_cast<j_common_ptr>(compressor));
        return TRUE;
    };
    destination_.term_destination = [](j_compress_ptr) {};
    compressor_.dest = &destination_;
    compressor_.image_width = static_cast<JDIMENSION>(rows_.size.width);
    compressor_.image_height = static_cast<JDIMENSION>(rows_.size.height);
    compressor_.input_components = 4;
    compressor_.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&compressor_);
    jpeg_set_quality(&compressor_, quality_, TRUE);
    compressor_.dct_method = JDCT_ISLOW;
    if (quality_ >= qualityOfWholeColours)
        compressor_.comp_info[0].h_samp_factor = compressor_.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&compressor_, TRUE);
    if (rows_.orientation != Orientation::up) {
        const auto exif = exifOf(rows_.orientation);
        jpeg_write_marker(&compressor_, JPEG_APP0 + 1, exif.data(), exif.size());
    }
}

void JPEGWriter::Compressor::write(JSAMPROW row) {
    if (failed_ || setjmp(failure_) != 0)
        failed_ = true;
    else
        jpeg_write_scanlines(&compressor_, &row, 1);
}

void JPEGWriter::Compressor::addRow(const std::uint8_t* row) {
    if (failed_)
        return;
    std::copy_n(row, row_.size(), row_.begin());
    if (rows_.toSRGB)
        rows_.toSRGB(row_);
    for (std::size_t i = 0; i < row_.size(); i += 4) {
        const int white = 255 - row_[i + 3];
        for (std::size_t channel = 0; channel < 3; ++channel)
            row_[i + channel] = static_cast<std::uint8_t>(std::min(255, row_[i + channel] + white));
    }
    write(row_.data());
}

std::optional<std::int64_t> JPEGWriter::Compressor::finish() {
    if (failed_ || setjmp(failure_) != 0)
        return std::nullopt;
    jpeg_finish_compress(&compressor_);
    return offset_ + static_cast<std::int64_t>(windowSize - destination_.free_in_buffer);
}

JPEGWriter::JPEGWriter(int memory, int quality)
    : PictureTarget(largestSourceSide, Wants::whole), memory_(memory), quality_(quality) {}

JPEGWriter::~JPEGWriter() = default;

void JPEGWriter::begin(PictureRows rows) {
    compressor_ = std::make_unique<Compressor>(memory_, quality_, std::move(rows));
    compressor_->start();
}

void JPEGWriter::addRow(const std::uint8_t* row) {
    compressor_->addRow(row);
}

std::optional<std::int64_t> JPEGWriter::finish() {
    return compressor_ ? compressor_->finish() : std::nullopt;
}

} // namespace sela
