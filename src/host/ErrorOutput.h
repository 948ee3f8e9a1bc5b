#pragma once

#include "host/CommandLine.h"

#include <cstdint>
#include <functional>
#include <string>

namespace sela {

/// What a run of `sela-share` tells on standard error while it works: the lines of the log, or, on a terminal
/// and without a window, one line that says how far saving has come and is wiped out at the end. One at a
/// time, made and destroyed on the main thread.
///
/// It learns how far saving has come from the lines that the log gets for each block of a copy.
class ErrorOutput {
public:
    /// The file that is being saved, from 1 on, and how many there are.
    struct Place {
        std::int64_t file;
        std::int64_t count;
    };

    /// `totalSize` is what is known of the size of all files, in bytes; `place` is called on the thread that
    /// copies.
    ErrorOutput(const CommandLine& line, std::int64_t totalSize, std::function<Place()> place);

    /// Wipes the line out; the log goes to standard error again.
    ~ErrorOutput();
    ErrorOutput(const ErrorOutput&) = delete;
    ErrorOutput& operator=(const ErrorOutput&) = delete;

private:
    void handleLogLine(const std::string& line);

    /// Counts what a line of the log says about a copy. False: it says nothing.
    bool count(const std::string& line);
    void draw(double now);
    void wipe();

    bool printsLog_;
    bool showsProgress_;
    const std::int64_t totalSize_;
    const std::function<Place()> place_;
    double start_ = 0; ///< when saving began
    double drawn_ = 0; ///< when the line was last drawn
    bool isShown_ = false;
    std::int64_t finished_ = 0; ///< bytes of the files before this one
    std::int64_t current_ = 0;  ///< bytes of this one
};

} // namespace sela
