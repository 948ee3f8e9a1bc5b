#pragma once

#include "host/CommandLine.h"

#include <string>
#include <vector>

namespace sela {

/// Digits that the card is to be given without standing among the arguments, which every user of the machine
/// can read. Main thread.

/// The digits on the first line of a file, or of standard input for "-"; the error when they cannot be read,
/// are missing, or there is anything else.
Result<Secret> readDigits(const std::string& file);

/// Gives the steps that type from a file its digits.
ErrorRef readTypedFiles(std::vector<Step>& steps);

/// Overwrites the digits of --type among the arguments of `main`, where they have been readable since the
/// program was started.
void overwriteTypedDigits(int argumentCount, char** arguments);

} // namespace sela
