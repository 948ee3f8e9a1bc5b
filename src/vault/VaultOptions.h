#pragma once

#include "commandline/OptionTable.h"

namespace sela {

/// The arguments of `sela-vault`.
const OptionTable& vaultOptions();

} // namespace sela
