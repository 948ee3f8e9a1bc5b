#pragma once

namespace sela {

/// What `sela-share` tells whoever started it.
enum class ExitStatus {
    completed = 0,
    cancelled = 3,
    cannotEnd = 4, ///< saving has stopped half-way and will never report back
    badArguments = 64,
    stepFailed = 65,
};

} // namespace sela
