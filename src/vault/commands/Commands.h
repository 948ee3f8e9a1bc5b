#pragma once

#include "commandline/Arguments.h"
#include "platform/foundation/JSONWriter.h"

#include <functional>
#include <string>

namespace sela {

/// The commands of `sela-vault`. Each does its work, prints the result, as text or, with --json, as one JSON
/// object (docs/formats.md), and returns the exit status of the program. One thread.

int initCommand(const Arguments& arguments);
int passcodeSetCommand(const Arguments& arguments);
int passcodeClearCommand(const Arguments& arguments);
int albumAddCommand(const Arguments& arguments);
int albumRenameCommand(const Arguments& arguments);
int albumRemoveCommand(const Arguments& arguments);
int albumCoverCommand(const Arguments& arguments);
int albumListCommand(const Arguments& arguments);
int publishCommand(const Arguments& arguments);
int ledgerCommand(const Arguments& arguments);
int importCommand(const Arguments& arguments);
int doctorCommand(const Arguments& arguments);

/// Prints an error or a warning on standard error; returns the exit status of a failure.
int fail(const std::string& message);
int fail(const ErrorRef& error);

/// The same for arguments that cannot be used.
int misuse(const std::string& message);

/// Prints on standard output; a failure when it cannot be written.
int print(const std::string& text);
int print(const Result<std::string>& text);

/// Prints a JSON object, whose members `write` writes, with a line end.
int printJSON(const std::function<void(JSONWriter&)>& write);

} // namespace sela
