#pragma once

namespace sela {

/// The exit statuses of `sela-share`.
enum class ExitStatus {
    completed = 0,
    notAll = 1,    ///< at least one file was not added
    cancelled = 3, ///< nothing was added
    cannotEnd = 4, ///< saving has stopped half-way and will never complete
    badArguments = 64,
    stepFailed = 65,
    cannotPrint = 74, ///< standard output cannot be written; the files are as they would be otherwise
};

} // namespace sela
