#pragma once

#include "mediaservice/InputFile.h"

#include <cstdint>
#include <vector>

namespace sela {

/// The offsets in a HEIF file of the four-byte types of the references that say what a block of metadata
/// describes ("cdsc", ISO 23008-12). Empty when there are none or the file is broken.
std::vector<std::int64_t> descriptionReferences(const InputFile& file);

} // namespace sela
