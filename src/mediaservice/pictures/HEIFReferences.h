#pragma once

#include "mediaservice/InputFile.h"

#include <cstdint>
#include <vector>

namespace sela {

/// Where in a HEIF file the types of the references lie that say what a block of metadata describes ("cdsc",
/// ISO 23008-12): offsets of four bytes. Empty when there are none or the file is broken.
std::vector<std::int64_t> descriptionReferences(const InputFile& file);

} // namespace sela
