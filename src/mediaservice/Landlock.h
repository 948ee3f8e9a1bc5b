#pragma once

namespace sela::Sandbox {

/// Denies the calling thread, and those that it starts, all access to files: to open, list, make, remove,
/// execute and rename them; where the kernel supports it, also to bind and connect TCP sockets, to connect to
/// abstract sockets and to signal other processes. Open descriptors stay usable. Cannot be undone. False
/// where the kernel has no Landlock, or the administrator has switched it off.
bool denyFiles();

} // namespace sela::Sandbox
