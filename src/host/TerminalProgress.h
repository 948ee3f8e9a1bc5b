#pragma once

#include "share/SaveRun.h"

#include <cstdint>

namespace sela {

/// A progress line on a terminal, redrawn in place and erased at the end. Main thread only.
class TerminalProgress {
public:
    /// Whether standard error is a terminal on which a line can be erased.
    static bool isPossible();

    /// `totalSize` is what is known of the size of all files, in bytes.
    explicit TerminalProgress(std::int64_t totalSize) : totalSize_(totalSize) {}

    /// Erases the line.
    ~TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    /// Draws the run's progress; at once the first time, then at most ten times a second.
    void show(const SaveRun& run);

private:
    void draw(const SaveRun& run, double now);

    const std::int64_t totalSize_;
    double start_ = 0; ///< when the first attachment began
    double drawn_ = 0; ///< when the line was last drawn
    bool isShown_ = false;
};

} // namespace sela
