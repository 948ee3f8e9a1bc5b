#pragma once

#include "commandline/Arguments.h"
#include "platform/foundation/JSONWriter.h"

#include <functional>
#include <string>

namespace sela {

/// What `sela-vault` does for each of its commands. Each does its work, prints what came of it, for people
/// or, with --json, as one JSON object (docs/formats.md), and gives the exit status of the program. One
/// thread.

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

/// Tells on standard error what could not be done, or a warning; the exit status of a failure.
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
