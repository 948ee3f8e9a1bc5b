#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/FileDescriptor.h"

#include <optional>
#include <span>
#include <vector>

namespace sela {

/// Packets and the descriptors that travel with them over one end of a Unix socket pair of sequenced packets.
/// Each end is used by one thread at a time.
namespace MediaSocket {

/// One packet as it arrived.
struct Packet {
    Data bytes;
    std::vector<FileDescriptor> descriptors;
};

/// Both ends of a new pair, closed on exec; absent when the system has none left.
std::optional<std::pair<FileDescriptor, FileDescriptor>> makePair();

/// Sends one packet; false when the other end is gone or the packet cannot be sent. Never raises SIGPIPE.
bool send(int socket, DataView bytes, std::span<const int> descriptors = {});

/// Waits for one packet until `deadline` (seconds of `monotonicSeconds`; absent: for ever). Absent when the
/// deadline passed, the other end is gone, or the packet is longer than any message.
std::optional<Packet> receive(int socket, std::optional<double> deadline = std::nullopt);

} // namespace MediaSocket

} // namespace sela
