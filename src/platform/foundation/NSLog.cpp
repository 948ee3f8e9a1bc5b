#include "platform/foundation/NSLog.h"

#include "platform/foundation/LogOutput.h"
#include "platform/foundation/UTF8.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include <syslog.h>

namespace sela {

namespace {

std::mutex& sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

std::function<void(const std::string&)>& redirectedSink() {
    static std::function<void(const std::string&)> sink;
    return sink;
}

/// Guarded by `sinkMutex`.
bool isLogPrinted = true;

/// The texts that this thread keeps back; null: it logs at once.
thread_local std::vector<std::string>* heldTexts = nullptr;

bool isHarmful(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c <= 0x9F);
    const bool lineSeparator = c == 0x2028 || c == 0x2029;
    const bool direction = c == 0x200E || c == 0x200F || c == 0x061C || (c >= 0x202A && c <= 0x202E) ||
                           (c >= 0x2066 && c <= 0x2069);
    return control || lineSeparator || direction;
}

std::string escape(char32_t c) {
    switch (c) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default: {
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "\\u%04x", static_cast<unsigned>(c));
        return buffer;
    }
    }
}

/// Standard error, for a pipe or a terminal opened again as a non-blocking file description of its own:
/// O_NONBLOCK on the inherited description would apply to the programs that share it, too. A file does not
/// block.
int standardError() {
    static const int descriptor = [] {
        struct stat status {};
        const bool canBlock =
            ::fstat(STDERR_FILENO, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode));
        const int own =
            canBlock ? ::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) : -1;
        return own >= 0 ? own : STDERR_FILENO;
    }();
    return descriptor;
}

/// Milliseconds for a reader that is there to make room; a terminal has none while it takes what came before.
constexpr int shortWait = 50;

/// The most writes of one text, in case that there is room and yet nothing can be written.
constexpr int mostWrites = 16;

/// Whether there is room now or soon. Once there was none, nobody waits until there is some again.
bool hasRoom(int descriptor) {
    static std::atomic<bool> isStalled = false;
    pollfd waited{descriptor, POLLOUT, 0};
    isStalled = ::poll(&waited, 1, isStalled ? 0 : shortWait) != 1;
    return !isStalled;
}

} // namespace

std::string escapedForLog(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        if (isHarmful(character.codePoint))
            line += escape(character.codePoint);
        else
            appendUTF8(line, character.codePoint);
        text.remove_prefix(character.length);
    }
    return line;
}

void NSLog(std::string_view text) {
    if (heldTexts) {
        heldTexts->emplace_back(text);
        return;
    }
    const std::string line = escapedForLog(text);
    const std::lock_guard lock(sinkMutex());
    if (redirectedSink()) {
        redirectedSink()(line);
        return;
    }
    ::syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
    if (isLogPrinted)
        printToStandardError(line);
}

void writeToStandardError(std::string_view text) {
    const int descriptor = standardError();
    for (int writes = 0; writes < mostWrites && !text.empty() && hasRoom(descriptor); ++writes) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EAGAIN && errno != EINTR)
            return;
    }
}

void printToStandardError(const std::string& line) {
    // With its end, so that lines of two processes on one terminal do not mix.
    writeToStandardError(line + '\n');
}

void setLogPrinted(bool printed) {
    const std::lock_guard lock(sinkMutex());
    isLogPrinted = printed;
}

HeldLog::HeldLog() {
    heldTexts = &texts_;
}

void HeldLog::release() {
    if (const std::vector<std::string>* const texts = std::exchange(heldTexts, nullptr))
        for (const std::string& text : *texts)
            NSLog(text);
}

HeldLog::~HeldLog() {
    heldTexts = nullptr;
}

LogRedirection::LogRedirection(std::function<void(const std::string&)> sink) {
    const std::lock_guard lock(sinkMutex());
    redirectedSink() = std::move(sink);
}

LogRedirection::~LogRedirection() {
    const std::lock_guard lock(sinkMutex());
    redirectedSink() = nullptr;
}

} // namespace sela
