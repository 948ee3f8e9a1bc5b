#pragma once

#include "commandline/OptionTable.h"

namespace sela {

/// The arguments of `sela-share`.
const OptionTable& shareOptions();

} // namespace sela
