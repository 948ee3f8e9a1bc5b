#pragma once

#include "platform/foundation/Data.h"

#include <string>
#include <string_view>

namespace sela {

/// The uniform type identifier of a file by the extension of its name, upper or lower case alike;
/// "public.data" when that is unknown. Any thread.
std::string_view typeIdentifierOfName(std::string_view name);

/// The media type that a file which starts with these bytes seems to have, such as "image/png"; empty when
/// they match no known type. 4 KiB suffice. Any thread.
std::string mediaTypeOfContent(DataView start);

} // namespace sela
