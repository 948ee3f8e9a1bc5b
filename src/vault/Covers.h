#pragma once

#include "platform/foundation/Error.h"

#include <string>
#include <vector>

namespace sela {

/// The covers of albums, in the group's folder for them. One thread.

/// Stores a picture as a cover: decoded by the media helper so that its shorter side has at most 512 pixels,
/// as JPEG, under a name of its own, which is the result. The error when there is no group, when the file
/// cannot be opened or is no picture that can be decoded, or when the cover cannot be written.
Result<std::string> storeCover(const std::string& path);

/// The covers that no published album names, by their names. One that is younger than an hour is left out:
/// its album may be about to be published.
Result<std::vector<std::string>> unusedCovers();

/// Removes them and returns their names.
Result<std::vector<std::string>> removeUnusedCovers();

} // namespace sela
