#include "commandline/PasscodeFile.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/SystemCall.h"
#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

namespace sela {

namespace {

constexpr std::int64_t largestFile = 4096;

constexpr std::string_view passcodeErrorDomain = "PasscodeErrorDomain";

/// The signals that would end or stop the program while the terminal's echo is off.
sigset_t interruptions() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int each : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        ::sigaddset(&signals, each);
    return signals;
}

/// Prompts on the terminal that is standard input and waits for a line typed with echo off. The terminal's
/// mode is restored before this returns, or before a signal that arrives meanwhile takes effect; after one
/// that only stopped the program, or is ignored, it prompts again.
void awaitUnseenLine(const std::string& prompt) {
    termios settings{};
    if (::tcgetattr(STDIN_FILENO, &settings) != 0)
        return;
    termios unseen = settings;
    unseen.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    unseen.c_lflag |= ECHONL;
    const sigset_t awaited = interruptions();
    const FileDescriptor signals(::signalfd(-1, &awaited, SFD_CLOEXEC));
    bool isAwaited = true;
    while (isAwaited) {
        sigset_t before{};
        ::pthread_sigmask(SIG_BLOCK, &awaited, &before);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &unseen);
        std::fputs((prompt + ": ").c_str(), stderr);
        pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {signals.get(), POLLIN, 0}};
        retryingInterrupted([&] { return ::poll(sources, std::size(sources), -1); });
        isAwaited = sources[0].revents == 0 && sources[1].revents != 0;
        ::tcsetattr(STDIN_FILENO, TCSADRAIN, &settings);
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
}

Result<Data> readStandardInput(const std::string& prompt) {
    const bool typed = ::isatty(STDIN_FILENO) != 0;
    if (typed)
        awaitUnseenLine(prompt);
    InputStream input(FileDescriptor(::dup(STDIN_FILENO)), "standard input");
    Data content;
    std::array<std::byte, largestFile> block;
    while (true) {
        const std::int64_t count = input.read(block);
        if (count < 0)
            return input.streamError();
        if (count == 0)
            return content;
        content.insert(content.end(), block.begin(), block.begin() + count);
        // Do not wait for more input of a terminal.
        if (typed && std::ranges::find(content, std::byte{'\n'}) != content.end())
            return content;
        if (static_cast<std::int64_t>(content.size()) > largestFile)
            return NSError::posix(EFBIG, "standard input");
    }
}

/// Returns the first line and overwrites the content.
Result<Secret> firstLine(Result<Data> content, const std::string& origin) {
    if (!content)
        return content.error();
    std::string_view line = asText(content.value());
    line = line.substr(0, line.find('\n'));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    Result<Secret> passcode =
        isValidUTF8(line) ? Result<Secret>(Secret(line)) : NSError::posix(EILSEQ, origin);
    ::explicit_bzero(content.value().data(), content.value().size());
    return passcode;
}

} // namespace

Result<Secret> readPasscode(const std::string& path) {
    if (path == "-")
        return firstLine(readStandardInput("Passcode"), "standard input");
    FileManager& files = FileManager::defaultManager();
    const Result<FileAttributes> attributes = files.attributesOfItem(path);
    if (attributes && attributes.value().type == FileAttributes::Type::other)
        return ErrorRef(std::make_shared<NSError>(
            passcodeErrorDomain, 2, "a passcode comes from an ordinary file, or from standard input for -"));
    return firstLine(files.contentsOfFile(path, largestFile), path);
}

Result<Secret> askForNewPasscode(const std::string& what) {
    Result<Secret> passcode = firstLine(readStandardInput(what), "standard input");
    if (!passcode || !::isatty(STDIN_FILENO))
        return passcode;
    Result<Secret> repeated = firstLine(readStandardInput("The same again"), "standard input");
    if (!repeated)
        return repeated;
    if (repeated.value() != passcode.value())
        return ErrorRef(std::make_shared<NSError>(passcodeErrorDomain, 1, "the two entries differ"));
    return passcode;
}

} // namespace sela
