#pragma once

namespace sela::Sandbox {

/// Moves the process into a network of its own that has nothing in it, and takes all capabilities from it.
/// Called while there is one thread only. False where an ordinary user may not make namespaces.
bool leaveNetwork();

} // namespace sela::Sandbox
