#pragma once

#include "platform/foundation/Error.h"

#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// The path of an album in text form: the names from the top level down with "/" between them, as in
/// "Trips/Rome". A "/" or "\" that belongs to a name has a "\" before it. Any thread.

/// Parses a path. The error when a name is empty or not UTF-8, or there are more than the two levels that the
/// picker shows.
Result<std::vector<std::string>> albumPath(std::string_view text);

/// The path of these names.
std::string albumPathText(const std::vector<std::string>& names);

} // namespace sela
