#pragma once

#include "share/SaveRun.h"

#include <cstdint>

namespace sela {

/// One line on a terminal that says how far saving has come, drawn over itself and wiped out at the end. Main
/// thread only.
class TerminalProgress {
public:
    /// Whether standard error is a terminal on which a line can be wiped out.
    static bool isPossible();

    /// `totalSize` is what is known of the size of all files, in bytes.
    explicit TerminalProgress(std::int64_t totalSize) : totalSize_(totalSize) {}

    /// Wipes the line out.
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    /// Draws how the run stands; at once when nothing is drawn yet, else ten times in a second at most.
    void show(const SaveRun& run);

private:
    void draw(const SaveRun& run, double now);

    const std::int64_t totalSize_;
    double start_ = 0; ///< when the first attachment began
    double drawn_ = 0; ///< when the line was last drawn
    bool isShown_ = false;
};

} // namespace sela
