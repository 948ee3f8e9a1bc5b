#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <string>

namespace sela {

/// Reads a passcode from a file, or from standard input for "-": the first line without its line end.
/// On a terminal it is asked for, and what is typed is not shown.
/// Passcodes never come from an argument, where other users of the machine could read them. The error when
/// the file cannot be read, is larger than 4 KiB, or its line is not UTF-8. One thread.
Result<Secret> readPasscode(const std::string& path);

/// Asks on the terminal for a passcode that is to be set, twice, since nothing shows what is typed; the error
/// when the two differ. `what` names it. Where standard input is no terminal, its first line is the passcode.
Result<Secret> askForNewPasscode(const std::string& what);

} // namespace sela
