#include "mediaservice/pictures/JPEGReader.h"

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/EXIF.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <jpeglib.h>

#include <jerror.h>

namespace sela {

namespace {

/// libjpeg on an input file. Its errors come back by longjmp, so the functions that call it keep nothing on
/// the stack that needs a destructor.
class Decompressor {
public:
    Decompressor(const InputFile& file, std::int64_t offset, std::int64_t end);
    ~Decompressor() { jpeg_destroy_decompress(&decompressor_); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    bool readHeader();

    /// Chooses how to decode for a result of `target` and returns the size of the rows to come.
    PictureSize chooseScale(PictureSize target);

    bool readRows(AreaScaler& scaler);

    PictureSize size() const {
        return {static_cast<int>(decompressor_.image_width), static_cast<int>(decompressor_.image_height)};
    }
    DecodedPicture::Colours colours() const;
    bool inksAreInverted() const { return decompressor_.saw_Adobe_marker; }
    Data profile();
    Orientation orientation() const;

private:
    static Decompressor& self(j_common_ptr common) {
        return *static_cast<Decompressor*>(common->client_data);
    }
    static Decompressor& self(j_decompress_ptr common) {
        return *static_cast<Decompressor*>(common->client_data);
    }
    [[noreturn]] static void fail(j_common_ptr common);
    static void noteMessage(j_common_ptr common, int level);
    bool startRows();
    bool hasAllAverages() const;
    bool hasEnd() const;
    static boolean fillBuffer(j_decompress_ptr decompressor);
    static void skipBytes(j_decompress_ptr decompressor, long count);

    const InputFile& file_;
    std::int64_t offset_;
    const std::int64_t end_;
    bool reachedEnd_ = false;
    std::array<std::byte, 64 << 10> buffer_;
    std::vector<std::uint8_t> row_;
    jpeg_decompress_struct decompressor_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr source_{};
    std::jmp_buf failure_;
};

Decompressor::Decompressor(const InputFile& file, std::int64_t offset, std::int64_t end)
    : file_(file), offset_(offset), end_(end) {
    decompressor_.err = jpeg_std_error(&errors_);
    errors_.error_exit = &fail;
    errors_.emit_message = &noteMessage;
    decompressor_.client_data = this;
}

void Decompressor::fail(j_common_ptr common) {
    std::longjmp(self(common).failure_, 1);
}

void Decompressor::noteMessage(j_common_ptr common, int level) {
    // The one warning that says that rows are made up because their data is missing. Others are about
    // unusual files that cameras do write.
    if (level < 0 && common->err->msg_code == JWRN_HIT_MARKER)
        fail(common);
}

boolean Decompressor::fillBuffer(j_decompress_ptr decompressor) {
    Decompressor& self = Decompressor::self(decompressor);
    const auto wanted = std::clamp<std::int64_t>(self.end_ - self.offset_, 0, self.buffer_.size());
    std::size_t count =
        self.file_.readAt(self.offset_, std::span(self.buffer_).first(static_cast<std::size_t>(wanted)));
    self.offset_ += static_cast<std::int64_t>(count);
    if (count == 0) {
        self.reachedEnd_ = true;
        self.buffer_[0] = std::byte{0xFF};
        self.buffer_[1] = std::byte{JPEG_EOI};
        count = 2;
    }
    self.source_.next_input_byte = reinterpret_cast<const JOCTET*>(self.buffer_.data());
    self.source_.bytes_in_buffer = count;
    return TRUE;
}

void Decompressor::skipBytes(j_decompress_ptr decompressor, long count) {
    Decompressor& self = Decompressor::self(decompressor);
    if (count <= 0)
        return;
    const auto skipped = std::min(static_cast<std::size_t>(count), self.source_.bytes_in_buffer);
    self.source_.next_input_byte += skipped;
    self.source_.bytes_in_buffer -= skipped;
    self.offset_ += count - static_cast<long>(skipped);
}

bool Decompressor::readHeader() {
    if (setjmp(failure_) != 0)
        return false;
    jpeg_create_decompress(&decompressor_);
    source_.init_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = &fillBuffer;
    source_.skip_input_data = &skipBytes;
    source_.resync_to_restart = &jpeg_resync_to_restart;
    source_.term_source = [](j_decompress_ptr) {};
    decompressor_.src = &source_;
    jpeg_save_markers(&decompressor_, JPEG_APP0 + 1, 0xFFFF);
    jpeg_save_markers(&decompressor_, JPEG_APP0 + 2, 0xFFFF);
    return jpeg_read_header(&decompressor_, TRUE) == JPEG_HEADER_OK;
}

PictureSize Decompressor::chooseScale(PictureSize target) {
    if (setjmp(failure_) != 0)
        return {};
    const bool inks = colours() == DecodedPicture::Colours::cmyk;
    decompressor_.out_color_space = inks ? JCS_CMYK : JCS_EXT_RGBA;
    decompressor_.scale_denom = 8;
    for (decompressor_.scale_num = 1; decompressor_.scale_num < 8; ++decompressor_.scale_num) {
        jpeg_calc_output_dimensions(&decompressor_);
        if (decompressor_.output_width >= static_cast<JDIMENSION>(target.width) &&
            decompressor_.output_height >= static_cast<JDIMENSION>(target.height))
            break;
    }
    jpeg_calc_output_dimensions(&decompressor_);
    // Interpolating colours between pixels is lost work when the pixels are averaged afterwards.
    const bool scaled = size() != target;
    decompressor_.do_fancy_upsampling = scaled ? FALSE : TRUE;
    // At an eighth each block of 8 x 8 is one pixel, its average. A progressive file has the averages in its
    // first scans, so the others (most of the file) need not be decoded.
    decompressor_.buffered_image = decompressor_.scale_num == 1 && decompressor_.progressive_mode;
    decompressor_.do_block_smoothing = FALSE;
    return {static_cast<int>(decompressor_.output_width), static_cast<int>(decompressor_.output_height)};
}

/// Reads as many scans as the rows need. Refuses a file that ends before its end marker.
bool Decompressor::startRows() {
    jpeg_start_decompress(&decompressor_);
    if (!decompressor_.buffered_image)
        return !jpeg_has_multiple_scans(&decompressor_) || !reachedEnd_;
    for (int state = JPEG_SUSPENDED; state != JPEG_SCAN_COMPLETED || !hasAllAverages();) {
        state = jpeg_consume_input(&decompressor_);
        if (state == JPEG_REACHED_EOI)
            break;
    }
    return !reachedEnd_ && (jpeg_input_complete(&decompressor_) || hasEnd()) &&
           jpeg_start_output(&decompressor_, decompressor_.input_scan_number);
}

bool Decompressor::hasAllAverages() const {
    for (int component = 0; component < decompressor_.num_components; ++component)
        if (decompressor_.coef_bits[component][0] != 0)
            return false;
    return true;
}

/// Whether an end marker follows. No compressed data and no table of a scan contains the marker's two bytes.
bool Decompressor::hasEnd() const {
    std::int64_t offset = offset_ - static_cast<std::int64_t>(source_.bytes_in_buffer);
    std::vector<std::byte> block(1 << 20);
    bool marker = false;
    while (offset < end_) {
        const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(end_ - offset, block.size()));
        const std::size_t count = file_.readAt(offset, std::span(block).first(wanted));
        for (const std::byte byte : std::span(block).first(count)) {
            if (marker && byte == std::byte{JPEG_EOI})
                return true;
            marker = byte == std::byte{0xFF};
        }
        if (count == 0)
            return false;
        offset += static_cast<std::int64_t>(count);
    }
    return false;
}

bool Decompressor::readRows(AreaScaler& scaler) {
    row_.resize(std::size_t{4} * decompressor_.output_width);
    JSAMPROW row = row_.data();
    if (setjmp(failure_) != 0)
        return false;
    if (!startRows())
        return false;
    while (decompressor_.output_scanline < decompressor_.output_height) {
        if (jpeg_read_scanlines(&decompressor_, &row, 1) != 1)
            return false;
        scaler.addRow(row);
    }
    return true;
}

DecodedPicture::Colours Decompressor::colours() const {
    switch (decompressor_.jpeg_color_space) {
    case JCS_CMYK:
    case JCS_YCCK:
        return DecodedPicture::Colours::cmyk;
    case JCS_GRAYSCALE:
        return DecodedPicture::Colours::gray;
    default:
        return DecodedPicture::Colours::rgb;
    }
}

Data Decompressor::profile() {
    JOCTET* bytes = nullptr;
    unsigned int size = 0;
    if (setjmp(failure_) != 0 || !jpeg_read_icc_profile(&decompressor_, &bytes, &size))
        return {};
    const std::unique_ptr<JOCTET, decltype(&std::free)> owned(bytes, &std::free);
    if (size > largestProfile)
        return {};
    const auto* begin = reinterpret_cast<const std::byte*>(bytes);
    return {begin, begin + size};
}

Orientation Decompressor::orientation() const {
    for (auto* marker = decompressor_.marker_list; marker; marker = marker->next) {
        const DataView block(reinterpret_cast<const std::byte*>(marker->data), marker->data_length);
        if (marker->marker == JPEG_APP0 + 1 && asText(block).starts_with("Exif"))
            return orientationOfEXIF(block);
    }
    return Orientation::up;
}

} // namespace

std::optional<DecodedPicture> readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end,
                                       int maximumSide) {
    const auto decompressor = std::make_unique<Decompressor>(file, offset, end);
    if (!decompressor->readHeader() || !isDecodableSize(decompressor->size()))
        return std::nullopt;
    const PictureSize target = fitted(decompressor->size(), maximumSide);
    const PictureSize decoded = decompressor->chooseScale(target);
    if (decoded.width < target.width || decoded.height < target.height)
        return std::nullopt;
    DecodedPicture picture;
    picture.colours = decompressor->colours();
    picture.profile = decompressor->profile();
    picture.orientation = decompressor->orientation();
    AreaScaler scaler(decoded, target);
    if (!decompressor->readRows(scaler))
        return std::nullopt;
    picture.pixels = scaler.take();
    if (decompressor->inksAreInverted() && picture.colours == DecodedPicture::Colours::cmyk)
        for (std::uint8_t& ink : picture.pixels.bytes)
            ink = static_cast<std::uint8_t>(255 - ink);
    return picture;
}

} // namespace sela
