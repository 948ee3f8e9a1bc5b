#pragma once

#include "platform/foundation/FileDescriptor.h"
#include "platform/media/MediaSocket.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <sys/types.h>

namespace sela {

/// The client's side of a running media helper: a child process and the socket to it. The destructor kills
/// and reaps it. Used by one thread at a time.
class MediaHelperProcess {
public:
    /// Starts the program at `path`; null when it cannot be started.
    static std::unique_ptr<MediaHelperProcess> start(const std::string& path);

    ~MediaHelperProcess();
    MediaHelperProcess(const MediaHelperProcess&) = delete;
    MediaHelperProcess& operator=(const MediaHelperProcess&) = delete;

    pid_t processIdentifier() const { return processIdentifier_; }

    /// Sends one packet; false when the helper has ended.
    bool send(DataView bytes, std::span<const int> descriptors);

    /// The next packet; absent when the helper ends, or sends nothing until `deadline` (monotonic seconds).
    std::optional<MediaSocket::Packet> receive(double deadline);

private:
    MediaHelperProcess(pid_t processIdentifier, FileDescriptor socket)
        : processIdentifier_(processIdentifier), socket_(std::move(socket)) {}

    pid_t processIdentifier_;
    FileDescriptor socket_;
};

/// The descriptor under which a helper finds its end of the socket.
inline constexpr int mediaHelperSocket = 3;

} // namespace sela
