#pragma once

#include "platform/foundation/URL.h"
#include "store/SharedItem.h"

#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Where an imported file goes below the folder of an import. Pure functions; any thread.

/// Which names a file system can hold.
enum class NameForm {
    own,     ///< those of Linux: up to 255 bytes
    portable ///< those that every other one holds as well, encrypting ones and those of other systems
             ///< included: up to 140 bytes, without : " < > | ? * and \, and without a dot or blank at the
             ///< end
};

/// A text as the name of one file or folder: an extension kept when it must be shortened; separators, control
/// characters, what overrides the direction of text, what is not UTF-8 and what the form forbids replaced;
/// never empty, ".", "..", and never hidden by a leading ".".
std::string safeFileName(std::string_view text, NameForm form = NameForm::own);

/// `into/vault` or `into/decoy`, followed by the names of an album.
URL importFolder(const URL& into, bool fake, const std::vector<std::string>& albumNames,
                 NameForm form = NameForm::own);

/// The name that the item wants: its preferred name, or its file name without one. For `attempt` 2 and above
/// " (2)" and so on stand before the extension.
std::string importName(const SharedItem& item, int attempt, NameForm form = NameForm::own);

} // namespace sela
