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

} // namespace sela
