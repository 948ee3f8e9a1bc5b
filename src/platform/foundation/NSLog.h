#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Writes one diagnostic line to the system's log and to standard error. Thread-safe.
///
/// `text` is the whole line, without a line end. Control characters, line separators and characters that turn
/// the direction of text are escaped, and bytes that are not UTF-8 become U+FFFD, so that a file name can
/// neither break a line into two nor control a terminal. Nothing else is changed and nothing is put before
/// the text.
void NSLog(std::string_view text);

/// The text as `NSLog` writes it.
std::string escapedForLog(std::string_view text);

/// Where the lines of `NSLog` go instead of the log while this object lives: tests capture them with it.
/// `sink` is called on the thread that logs, one call at a time, with the escaped text. One redirection at a
/// time.
class LogRedirection {
public:
    explicit LogRedirection(std::function<void(const std::string&)> sink);
    ~LogRedirection();
    LogRedirection(const LogRedirection&) = delete;
    LogRedirection& operator=(const LogRedirection&) = delete;
};

/// Keeps back what the thread that made it logs while it lives, so that it can be logged later, in its place
/// among other lines. One at a time on a thread.
class HeldLog {
public:
    HeldLog();
    ~HeldLog();
    HeldLog(const HeldLog&) = delete;
    HeldLog& operator=(const HeldLog&) = delete;

    /// The texts given to `NSLog` so far, unchanged.
    const std::vector<std::string>& texts() const { return texts_; }

    /// Logs what this thread keeps back, if anything, and keeps nothing more back: for a process that is
    /// about to stop.
    static void release();

private:
    std::vector<std::string> texts_;
};

/// "true" or "false", as log lines print a Boolean.
inline std::string_view describe(bool value) {
    return value ? "true" : "false";
}

} // namespace sela
