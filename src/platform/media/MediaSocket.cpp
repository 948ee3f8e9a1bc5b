#include "platform/media/MediaSocket.h"

#include "platform/foundation/MonotonicClock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

namespace sela::MediaSocket {

namespace {

// Longer than any message, so that a longer packet shows as one.
constexpr std::size_t packetLimit = 256;
constexpr std::size_t descriptorLimit = 2;

using ControlBuffer = std::array<std::byte, CMSG_SPACE(descriptorLimit * sizeof(int))>;

bool waitUntilReadable(int socket, double deadline) {
    for (;;) {
        const double left = std::max(0.0, deadline - monotonicSeconds());
        pollfd waiting{socket, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(std::ceil(left * 1000)));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
        if (monotonicSeconds() >= deadline)
            return false;
    }
}

std::vector<FileDescriptor> takeDescriptors(msghdr& message) {
    std::vector<FileDescriptor> descriptors;
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS)
            continue;
        const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(part) + i * sizeof(int), sizeof descriptor);
            descriptors.emplace_back(descriptor);
        }
    }
    return descriptors;
}

} // namespace

std::optional<std::pair<FileDescriptor, FileDescriptor>> makePair() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return std::nullopt;
    return std::pair(FileDescriptor(ends[0]), FileDescriptor(ends[1]));
}

bool send(int socket, DataView bytes, std::span<const int> descriptors) {
    iovec content{const_cast<std::byte*>(bytes.data()), bytes.size()};
    alignas(cmsghdr) ControlBuffer control{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    if (!descriptors.empty()) {
        message.msg_control = control.data();
        message.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
        cmsghdr* part = CMSG_FIRSTHDR(&message);
        part->cmsg_level = SOL_SOCKET;
        part->cmsg_type = SCM_RIGHTS;
        part->cmsg_len = CMSG_LEN(descriptors.size_bytes());
        std::memcpy(CMSG_DATA(part), descriptors.data(), descriptors.size_bytes());
    }
    ssize_t sent = 0;
    do
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(bytes.size());
}

std::optional<Packet> receive(int socket, std::optional<double> deadline) {
    if (deadline && !waitUntilReadable(socket, *deadline))
        return std::nullopt;
    Packet packet;
    packet.bytes.resize(packetLimit);
    iovec content{packet.bytes.data(), packet.bytes.size()};
    alignas(cmsghdr) ControlBuffer control{};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t received = 0;
    do
        received = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);
    if (received <= 0)
        return std::nullopt;
    packet.descriptors = takeDescriptors(message);
    if (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC))
        return std::nullopt;
    packet.bytes.resize(static_cast<std::size_t>(received));
    return packet;
}

} // namespace sela::MediaSocket
