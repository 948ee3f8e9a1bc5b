#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"

#include <optional>

namespace sela {

/// Where the vault is. Neither creates nor changes anything; any thread.

/// Where the group's container is or is to be made; the error when there is no place for it.
Result<URL> vaultPlace();

/// The group's container. The error when there is no vault yet, or when its folder is there but cannot be
/// reached.
Result<URL> vaultContainer();

/// The file of the group's settings, which need not exist; absent when there is no place for it.
std::optional<URL> settingsFile();

/// Whether a folder, which need not exist yet, is the container or inside it, on whatever path.
bool isInsideContainer(const URL& folder, const URL& container);

} // namespace sela
