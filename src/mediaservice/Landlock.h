#pragma once

namespace sela::Sandbox {

/// Takes every right to files from the calling thread and those that it starts: to open, list, make, remove,
/// run and rename; where the kernel can, also to bind and connect TCP sockets, to connect to abstract sockets
/// and to signal other processes. Descriptors that are open stay usable. Cannot be undone. False where the
/// kernel has no Landlock, or the administrator has switched it off.
bool denyFiles();

} // namespace sela::Sandbox
