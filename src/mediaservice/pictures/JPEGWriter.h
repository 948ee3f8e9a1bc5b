#pragma once

#include "mediaservice/pictures/PictureTarget.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace sela {

/// A picture in its full size, written as a JPEG file into shared memory while its rows come: in sRGB,
/// transparent parts on white, in its stored orientation, with EXIF that says which. It needs the complete
/// picture.
class JPEGWriter : public PictureTarget {
public:
    /// Writes into the memory behind a descriptor, which stays the caller's, in `quality` 1 to 100.
    JPEGWriter(int memory, int quality);
    ~JPEGWriter() override;

    void begin(PictureRows rows) override;
    void addRow(const std::uint8_t* row) override;

    /// Finishes the file after the last row, and returns its size in bytes; absent when rows are missing, the
    /// memory is too small, or the picture is larger than JPEG allows (65,500 pixels a side). Called once.
    std::optional<std::int64_t> finish();

private:
    class Compressor;

    const int memory_;
    const int quality_;
    std::unique_ptr<Compressor> compressor_;
};

} // namespace sela
