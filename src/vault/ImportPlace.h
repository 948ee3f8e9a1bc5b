#pragma once

#include "platform/foundation/URL.h"
#include "store/SharedItem.h"

#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// The target of an imported file below the folder of an import. Pure functions; any thread.

/// The names that a file system allows.
enum class NameForm {
    own,     ///< those of Linux: up to 255 bytes
    portable ///< those that every other one holds as well, encrypting ones and those of other systems
             ///< included: up to 140 bytes, without : " < > | ? * and \, and without a dot or blank at the
             ///< end
};

/// A text as the name of one file or folder: an extension kept when it must be shortened; separators, control
/// characters, overrides of the text direction, bytes that are not UTF-8 and characters that the form forbids
/// replaced; never empty, ".", "..", and never hidden by a leading ".".
std::string safeFileName(std::string_view text, NameForm form = NameForm::own);

/// `into/vault` or `into/decoy`, followed by the names of an album.
URL importFolder(const URL& into, bool fake, const std::vector<std::string>& albumNames,
                 NameForm form = NameForm::own);

/// The name for the item: its preferred name, or its file name without one. For `attempt` 2 and above " (2)"
/// and so on is inserted before the extension.
std::string importName(const SharedItem& item, int attempt, NameForm form = NameForm::own);

} // namespace sela
