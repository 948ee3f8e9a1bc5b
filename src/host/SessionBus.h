#pragma once

namespace sela {

/// Whether the desktop has a session bus. Connecting without one would start one, which keeps running.
bool hasSessionBus();

} // namespace sela
