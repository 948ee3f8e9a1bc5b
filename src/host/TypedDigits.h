#pragma once

#include "host/CommandLine.h"

#include <string>
#include <vector>

namespace sela {

/// Digits to type that are not passed as arguments, which every user of the machine can read. Main thread.

/// The digits on the first line of a file, or of standard input for "-"; the error when they cannot be read,
/// are missing, or there is anything else.
Result<Secret> readDigits(const std::string& file);

/// Fills in the digits of the steps that type from a file.
ErrorRef readTypedFiles(std::vector<Step>& steps);

/// Overwrites the digits of --type among the arguments of `main`, where other users could read them until
/// now.
void overwriteTypedDigits(int argumentCount, char** arguments);

} // namespace sela
