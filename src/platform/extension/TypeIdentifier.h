#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/URL.h"

#include <string>

namespace sela {

/// The uniform type identifier of a file: by the extension of its name, otherwise by what its first bytes
/// look like, otherwise "public.data". Reads at most 4 KiB of the file, and only when the name tells nothing;
/// a file that cannot be read is "public.data". Any thread.
std::string typeIdentifierOfFile(const URL& file);

/// The media type that a file which starts with these bytes seems to have, such as "image/png"; empty when
/// they look like nothing known. 4 KiB tell enough. Any thread.
std::string mediaTypeOfContent(DataView start);

} // namespace sela
