#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/BMPHeader.h"

#include <functional>
#include <span>

namespace sela {

/// Decodes the run lengths of a BMP file and calls `addRow` for each row in the order in which they are
/// stored: red, green, blue, alpha; pixels that no run covers are transparent. `addRow` is not called for
/// rows that are missing after the end mark. False when the file is truncated, or claims more pixels than
/// runs of its size could cover.
bool readBMPRuns(const InputFile& file, const BMPHeader& header,
                 const std::function<void(const std::uint8_t* row)>& addRow);

} // namespace sela
