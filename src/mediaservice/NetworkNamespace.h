#pragma once

namespace sela::Sandbox {

/// Moves the process into an empty network namespace of its own and drops all its capabilities. Must be
/// called while there is one thread only. False where an unprivileged user may not create namespaces.
bool leaveNetwork();

} // namespace sela::Sandbox
