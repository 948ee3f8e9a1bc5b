#include "mediaservice/pictures/JPEGReader.h"

#include "mediaservice/pictures/ColourProfile.h"
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

// Of a truncated file, at least one in this many rows must be there.
constexpr int leastReadable = 4;

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

    /// Hands the rows to `target`, down to where the data ends. Returns how many there were.
    int readRows(PictureTarget& target);

    PictureSize size() const {
        return {static_cast<int>(decompressor_.image_width), static_cast<int>(decompressor_.image_height)};
    }
    PixelColours colours() const;
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
    void startRows();
    void readScans();
    int roughestAverage() const;
    static boolean fillBuffer(j_decompress_ptr decompressor);
    static void skipBytes(j_decompress_ptr decompressor, long count);

    const InputFile& file_;
    std::int64_t offset_;
    const std::int64_t end_;
    bool dataIsMissing_ = false;
    int readableRows_ = 0; ///< of those to come, what the scans that were read hold
    int rowsRead_ = 0;
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
    // The only warning that means that rows are made up because their data is missing. Others are about
    // unusual files that cameras do write.
    if (level < 0 && common->err->msg_code == JWRN_HIT_MARKER)
        self(common).dataIsMissing_ = true;
}

boolean Decompressor::fillBuffer(j_decompress_ptr decompressor) {
    Decompressor& self = Decompressor::self(decompressor);
    const auto wanted = std::clamp<std::int64_t>(self.end_ - self.offset_, 0, self.buffer_.size());
    std::size_t count =
        self.file_.readAt(self.offset_, std::span(self.buffer_).first(static_cast<std::size_t>(wanted)));
    self.offset_ += static_cast<std::int64_t>(count);
    if (count == 0) {
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
    const bool inks = colours() == PixelColours::cmyk;
    decompressor_.out_color_space = inks ? JCS_CMYK : JCS_EXT_RGBA;
    decompressor_.scale_denom = 8;
    // The library rounds up, and fills the last row and column from beyond the picture's edge: they do not
    // count.
    const auto scaled = [this](int side) { return side * static_cast<int>(decompressor_.scale_num) / 8; };
    for (decompressor_.scale_num = 1; decompressor_.scale_num < 8; ++decompressor_.scale_num)
        if (scaled(size().width) >= target.width && scaled(size().height) >= target.height)
            break;
    jpeg_calc_output_dimensions(&decompressor_);
    // Interpolating colours between pixels is wasted work when the pixels are averaged afterwards.
    decompressor_.do_fancy_upsampling = size() == target ? TRUE : FALSE;
    decompressor_.buffered_image = decompressor_.progressive_mode;
    decompressor_.do_block_smoothing = FALSE;
    return {scaled(size().width), scaled(size().height)};
}

void Decompressor::startRows() {
    jpeg_start_decompress(&decompressor_);
    readableRows_ = static_cast<int>(decompressor_.output_height);
    if (decompressor_.buffered_image)
        readScans();
    else if (jpeg_has_multiple_scans(&decompressor_) && dataIsMissing_)
        readableRows_ = 0; // each scan holds one colour, so some are missing everywhere
}

/// Reads the scans of a progressive file that the rows need, as far as there are any.
void Decompressor::readScans() {
    constexpr int missing = -1;
    // At an eighth each block of 8 x 8 is one pixel, its average. The averages are in the first scans, so the
    // others (most of the file) need not be decoded.
    const bool averagesSuffice = decompressor_.scale_num == 1;
    int roughest = missing; // of the scans that were read whole
    for (int state = JPEG_SUSPENDED; state != JPEG_REACHED_EOI;) {
        state = jpeg_consume_input(&decompressor_);
        if (dataIsMissing_) {
            const auto wholeRows = static_cast<int>(decompressor_.input_iMCU_row) - 1;
            const int scale = static_cast<int>(decompressor_.scale_num);
            if (roughest == missing)
                readableRows_ =
                    roughestAverage() == missing ? 0 : wholeRows * decompressor_.max_v_samp_factor * scale;
            break;
        }
        if (state == JPEG_SCAN_COMPLETED)
            roughest = roughestAverage();
        if (averagesSuffice && roughest == 0)
            break;
    }
    jpeg_start_output(&decompressor_, decompressor_.input_scan_number);
}

/// How many bits the averages of the blocks lack in the component where they lack most; -1 when one has none.
int Decompressor::roughestAverage() const {
    int most = 0;
    for (int component = 0; component < decompressor_.num_components; ++component) {
        const int lacking = decompressor_.coef_bits[component][0];
        if (lacking < 0)
            return lacking;
        most = std::max(most, lacking);
    }
    return most;
}

int Decompressor::readRows(PictureTarget& target) {
    row_.resize(std::size_t{4} * decompressor_.output_width);
    JSAMPROW row = row_.data();
    if (setjmp(failure_) != 0)
        return rowsRead_;
    startRows();
    while (rowsRead_ < readableRows_) {
        if (jpeg_read_scanlines(&decompressor_, &row, 1) != 1)
            break;
        if (dataIsMissing_ && !decompressor_.buffered_image)
            break;
        target.addRow(row);
        ++rowsRead_;
    }
    return rowsRead_;
}

PixelColours Decompressor::colours() const {
    switch (decompressor_.jpeg_color_space) {
    case JCS_CMYK:
    case JCS_YCCK:
        return PixelColours::cmyk;
    case JCS_GRAYSCALE:
        return PixelColours::gray;
    default:
        return PixelColours::rgb;
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

/// The conversion of the pixels to sRGB; some files store inks inverted.
PixelConversion conversion(PixelColours colours, const Data& profile, bool inksAreInverted) {
    PixelConversion toSRGB = conversionToSRGB(colours, profile);
    if (!inksAreInverted)
        return toSRGB;
    return [toSRGB = std::move(toSRGB)](std::span<std::uint8_t> pixels) {
        for (std::uint8_t& ink : pixels)
            ink = static_cast<std::uint8_t>(255 - ink);
        toSRGB(pixels);
    };
}

} // namespace

bool readJPEG(const InputFile& file, std::int64_t offset, std::int64_t end, PictureTarget& target,
              std::optional<Orientation> orientation) {
    const auto decompressor = std::make_unique<Decompressor>(file, offset, end);
    if (!decompressor->readHeader() || !isDecodableSize(decompressor->size()))
        return false;
    const PictureSize wanted = fitted(decompressor->size(), target.bounds());
    const PictureSize decoded = decompressor->chooseScale(wanted);
    if (decoded.width < wanted.width || decoded.height < wanted.height)
        return false;
    const PixelColours colours = decompressor->colours();
    const bool inverted = decompressor->inksAreInverted() && colours == PixelColours::cmyk;
    target.begin({decoded, decompressor->size(), orientation.value_or(decompressor->orientation()),
                  conversion(colours, decompressor->profile(), inverted)});
    const int rows = decompressor->readRows(target);
    if (target.wantsWhole() ? rows < decoded.height : rows * leastReadable < decoded.height)
        return false;
    const std::vector<std::uint8_t> nothing(std::size_t{4} * static_cast<std::size_t>(decoded.width),
                                            inverted ? 255 : 0);
    for (int row = rows; row < decoded.height; ++row)
        target.addRow(nothing.data());
    return true;
}

} // namespace sela
