#include "host/TerminalProgress.h"

#include "platform/foundation/LogOutput.h"
#include "platform/foundation/MonotonicClock.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace sela {

namespace {

/// Seconds between two drawings of the line.
constexpr double drawInterval = 0.1;

/// Seconds of saving after which the remaining time is estimated from its rate.
constexpr double rateSeconds = 1;

constexpr const char* wiping = "\r\x1b[K";

std::size_t terminalWidth() {
    struct winsize size {};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

/// A number of bytes as people read it: "999 B", "1.0 kB", "23.4 MB".
std::string sizeText(double bytes) {
    constexpr std::array units{"B", "kB", "MB", "GB", "TB", "PB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < units.size(); ++unit)
        bytes /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

/// A length of time as people read it: "12 s", "3 min", "2 h 5 min".
std::string timeText(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
    if (whole < 100)
        return std::to_string(whole) + " s";
    const std::int64_t minutes = (whole + 59) / 60;
    if (minutes < 100)
        return std::to_string(minutes) + " min";
    return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

} // namespace

bool TerminalProgress::isPossible() {
    const char* const kind = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) && kind && *kind && std::string_view(kind) != "dumb";
}

TerminalProgress::~TerminalProgress() {
    if (isShown_)
        writeToStandardError(wiping);
}

void TerminalProgress::show(const SaveRun& run) {
    const double now = monotonicSeconds();
    if (start_ == 0)
        start_ = now;
    if (run.state == SaveRun::State::saving && run.copiedBytes > 0 &&
        (!isShown_ || now - drawn_ >= drawInterval))
        draw(run, now);
}

void TerminalProgress::draw(const SaveRun& run, double now) {
    const std::int64_t bytes = run.savedBytes + run.copiedBytes;
    std::string text = "Adding file " + std::to_string(run.currentAttachmentIndex + 1) + " of " +
                       std::to_string(run.outcomes.size()) + ": " + sizeText(static_cast<double>(bytes));
    if (totalSize_ >= bytes)
        text += " of " + sizeText(static_cast<double>(totalSize_));
    if (now > start_) {
        const double rate = static_cast<double>(bytes) / (now - start_);
        text += ", " + sizeText(rate) + "/s";
        if (now > start_ + rateSeconds && totalSize_ >= bytes)
            text += ", " + timeText(static_cast<double>(totalSize_ - bytes) / rate) + " left";
    }
    text.resize(std::min(text.size(), terminalWidth() - 1));
    writeToStandardError(wiping + text);
    drawn_ = now;
    isShown_ = true;
}

} // namespace sela
