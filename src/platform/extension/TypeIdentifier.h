#pragma once

#include "platform/foundation/Data.h"

#include <string>
#include <string_view>

namespace sela {

/// The uniform type identifier of a file by the extension of its name, upper or lower case alike;
/// "public.data" when that tells nothing. Any thread.
std::string_view typeIdentifierOfName(std::string_view name);

/// The media type that a file which starts with these bytes seems to have, such as "image/png"; empty when
/// they look like nothing known. 4 KiB tell enough. Any thread.
std::string mediaTypeOfContent(DataView start);

} // namespace sela
