#pragma once

#include "platform/foundation/URL.h"

#include <optional>

namespace sela {

/// The user's base folders (XDG Base Directory). Read from the environment at each call; a variable that is
/// empty or holds a relative path counts as unset. Absent when neither the variable nor $HOME gives one.
/// Thread-safe as long as the environment does not change.
namespace BaseDirectories {

/// $XDG_DATA_HOME, or ~/.local/share.
std::optional<URL> data();

/// $XDG_CONFIG_HOME, or ~/.config.
std::optional<URL> config();

} // namespace BaseDirectories

} // namespace sela
