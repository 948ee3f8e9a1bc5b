#pragma once

#include "commandline/OptionTable.h"

#include <string>

namespace sela {

/// The scripts by which a shell completes a program's arguments.
std::string bashCompletion(const OptionTable& table);
std::string fishCompletion(const OptionTable& table);
std::string zshCompletion(const OptionTable& table);

} // namespace sela
