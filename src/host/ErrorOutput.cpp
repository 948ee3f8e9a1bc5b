#include "host/ErrorOutput.h"

#include "platform/foundation/LogOutput.h"
#include "platform/foundation/MonotonicClock.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace sela {

namespace {

/// Seconds between two drawings of the line.
constexpr double drawInterval = 0.1;

constexpr const char* wiping = "\r\x1b[K";

/// A terminal on which a line can be wiped out.
bool isCapableTerminal() {
    const char* const kind = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) && kind && *kind && std::string_view(kind) != "dumb";
}

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

} // namespace

ErrorOutput::ErrorOutput(const CommandLine& line, std::int64_t totalSize, std::function<Place()> place)
    : printsLog_(line.output == CommandLine::Output::verbose ||
                 (line.output == CommandLine::Output::normal && !::isatty(STDERR_FILENO))),
      showsProgress_(line.headless && line.output != CommandLine::Output::quiet && isCapableTerminal()),
      totalSize_(totalSize), place_(std::move(place)) {
    setLogPrinter([this](const std::string& logLine) { handleLogLine(logLine); });
}

ErrorOutput::~ErrorOutput() {
    setLogPrinter({});
    wipe();
}

void ErrorOutput::handleLogLine(const std::string& line) {
    if (printsLog_) {
        wipe();
        printToStandardError(line);
    }
    const double now = monotonicSeconds();
    if (showsProgress_ && count(line) && (!isShown_ || now - drawn_ >= drawInterval))
        draw(now);
}

bool ErrorOutput::count(const std::string& line) {
    if (line.starts_with("InputItems count = ") && start_ == 0)
        start_ = monotonicSeconds();
    long long block = 0;
    long long total = 0;
    if (std::sscanf(line.c_str(), "copyItem: readBytes = %lld, totalReadBytes = %lld", &block, &total) != 2)
        return false;
    current_ = total;
    if (block == 0)
        finished_ += std::exchange(current_, 0);
    return true;
}

void ErrorOutput::draw(double now) {
    const Place place = place_();
    const std::int64_t bytes = finished_ + current_;
    std::string text = "Adding file " + std::to_string(std::min(place.file, place.count)) + " of " +
                       std::to_string(place.count) + ": " + sizeText(static_cast<double>(bytes));
    if (totalSize_ >= bytes)
        text += " of " + sizeText(static_cast<double>(totalSize_));
    if (now > start_)
        text += ", " + sizeText(static_cast<double>(bytes) / (now - start_)) + "/s";
    text.resize(std::min(text.size(), terminalWidth() - 1));
    std::fputs((wiping + text).c_str(), stderr);
    drawn_ = now;
    isShown_ = true;
}

void ErrorOutput::wipe() {
    if (std::exchange(isShown_, false))
        std::fputs(wiping, stderr);
}

} // namespace sela
