#pragma once

namespace sela {

/// What `sela-share` tells whoever started it.
enum class ExitStatus {
    completed = 0,
    notAll = 1,    ///< at least one file was not added
    cancelled = 3, ///< nothing was added
    cannotEnd = 4, ///< saving has stopped half-way and will never report back
    badArguments = 64,
    stepFailed = 65,
};

} // namespace sela
