#pragma once

#include "commandline/OptionTable.h"
#include "platform/foundation/Error.h"

#include <string>
#include <string_view>

namespace sela {

/// Fills in a manual page. A line "@synopsis", "@commands", "@statuses", "@examples", "@kinds" or "@options
/// TITLE" is replaced by what the program's table says: how it is called, its commands with their options,
/// its exit statuses, its examples, the extensions of the files that the vault keeps, and the options of a
/// group. Other lines are roff and stay as they are. The error for any other line that begins with "@".
Result<std::string> manualPage(const OptionTable& table, std::string_view page);

} // namespace sela
