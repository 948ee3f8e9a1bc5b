#pragma once

#include "platform/foundation/Error.h"

#include <string>

namespace sela {

/// Why something failed, in the language of the screens: by their table, and for errors of the system that it
/// lacks by the C library's; in English when neither knows the text. Main thread only.
std::string localizedReason(const Error& error);

/// The same in English, for a terminal or a program, and with what to do next where it is known.
std::string plainReason(const Error& error);

} // namespace sela
