#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <string>

namespace sela {

/// Reads a passcode from a file, or from standard input for "-": the first line without its line end. On a
/// terminal it prompts for it with echo off. Passcodes are never arguments, which other users of the machine
/// can read. The error when it is no ordinary file, cannot be read, is larger than 4 KiB, or its line is not
/// UTF-8. One thread.
Result<Secret> readPasscode(const std::string& path);

/// Asks on the terminal for a new passcode, twice, since what is typed is not shown; the error when the two
/// differ. `what` names it. Where standard input is no terminal, its first line is the passcode.
Result<Secret> askForNewPasscode(const std::string& what);

} // namespace sela
