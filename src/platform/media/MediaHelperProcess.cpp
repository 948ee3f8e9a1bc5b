#include "platform/media/MediaHelperProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

namespace sela {

namespace {

/// Set-up of the child before exec: it gets the socket, and no other descriptor to read or write, not even
/// the user's terminal.
class SpawnActions {
public:
    explicit SpawnActions(int socket) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, socket, mediaHelperSocket);
        posix_spawn_file_actions_addclosefrom_np(&actions_, mediaHelperSocket + 1);
    }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

} // namespace

std::unique_ptr<MediaHelperProcess> MediaHelperProcess::start(const std::string& path) {
    auto ends = MediaSocket::makePair();
    if (!ends)
        return nullptr;
    // Duplicating a descriptor onto its own number would leave it closed on exec, so it gets another first.
    const FileDescriptor childEnd(::fcntl(ends->second.get(), F_DUPFD_CLOEXEC, mediaHelperSocket + 1));
    if (!childEnd.isOpen())
        return nullptr;
    const SpawnActions actions(childEnd.get());
    std::string program = path;
    char* const arguments[] = {program.data(), nullptr};
    pid_t processIdentifier = 0;
    if (::posix_spawn(&processIdentifier, path.c_str(), actions.get(), nullptr, arguments, environ) != 0)
        return nullptr;
    return std::unique_ptr<MediaHelperProcess>(
        new MediaHelperProcess(processIdentifier, std::move(ends->first)));
}

MediaHelperProcess::~MediaHelperProcess() {
    ::kill(processIdentifier_, SIGKILL);
    while (::waitpid(processIdentifier_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool MediaHelperProcess::send(DataView bytes, std::span<const int> descriptors) {
    return MediaSocket::send(socket_.get(), bytes, descriptors);
}

std::optional<MediaSocket::Packet> MediaHelperProcess::receive(double deadline) {
    return MediaSocket::receive(socket_.get(), deadline);
}

} // namespace sela
