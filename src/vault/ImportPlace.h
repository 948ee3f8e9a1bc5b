#pragma once

#include "platform/foundation/URL.h"
#include "store/SharedItem.h"

#include <string>
#include <string_view>

namespace sela {

/// Where an imported file goes below the folder of an import. Pure functions; any thread.

/// A text as the name of one file or folder: at most 255 bytes (the file systems' limit), an extension kept
/// when it must be shortened; separators, control characters, what overrides the direction of text, and what
/// is not UTF-8 replaced; never empty, ".", "..", and never hidden by a leading ".".
std::string safeFileName(std::string_view text);

/// `into/vault` or `into/decoy`, followed by the names of the item's album.
URL importFolder(const URL& into, const SharedItem& item);

/// The name that the item wants: its preferred name, or its file name without one. For `attempt` 2 and above
/// " (2)" and so on stand before the extension.
std::string importName(const SharedItem& item, int attempt);

} // namespace sela
