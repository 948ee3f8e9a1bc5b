#include "mediaservice/RequestLoop.h"

#include "platform/media/MediaHelperProcess.h"
#include "platform/media/MediaSocket.h"
#include "platform/media/SharedMemory.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <poll.h>
#include <thread>

namespace sela {

namespace {

constexpr int exitUnavailable = 69;

/// Ends the process when the client's end of the socket closes. (PR_SET_PDEATHSIG would signal when the
/// client's thread that started this process ends, not when the client does.)
void endWithClient() {
    pollfd client{mediaHelperSocket, POLLRDHUP, 0};
    while (::poll(&client, 1, -1) <= 0) {
    }
    ::_exit(EXIT_SUCCESS);
}

MediaOutcome outcomeOf(const RequestHandler& handler, const MediaRequest& request, FileDescriptor file,
                       int memory) {
    try {
        return handler(request, InputFile(std::move(file)), memory);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

/// The answer to one packet; absent when the packet breaks the rules.
std::optional<MediaResponse> answer(MediaSocket::Packet packet, const RequestHandler& handler) {
    const auto request = decodeRequest(packet.bytes);
    if (!request)
        return std::nullopt;
    const bool hasMemory = request->memorySize() > 0;
    if (packet.descriptors.size() != (hasMemory ? 2 : 1))
        return std::nullopt;
    const MediaOutcome outcome = outcomeOf(handler, *request, std::move(packet.descriptors[0]),
                                           hasMemory ? packet.descriptors[1].get() : -1);

    MediaResponse response;
    response.number = request->number;
    response.status = outcome.status;
    response.framesDecoded = outcome.framesDecoded;
    if (outcome.status != MediaStatus::done)
        return response;
    response.time = outcome.time;
    response.fileSize = outcome.fileSize;
    if (outcome.fileSize == 0 && hasMemory) {
        const auto shared = SharedMemory::open(std::move(packet.descriptors[1]), outcome.pixels.bytes.size());
        if (!shared)
            return std::nullopt;
        std::ranges::copy(outcome.pixels.bytes, shared->bytes().begin());
        response.width = static_cast<std::uint32_t>(outcome.pixels.width);
        response.height = static_cast<std::uint32_t>(outcome.pixels.height);
    }
    return response;
}

} // namespace

int serveRequests(const Sandbox::Limits& limits, const RequestHandler& handler) {
    // A malloc arena for each thread would cost address space, and large blocks must be returned to the
    // system after each file.
    ::mallopt(M_ARENA_MAX, 2);
    ::mallopt(M_MMAP_THRESHOLD, 1 << 20);
    if (!Sandbox::enter(limits))
        return exitUnavailable;
    std::thread(endWithClient).detach();
    while (auto packet = MediaSocket::receive(mediaHelperSocket)) {
        const auto response = answer(std::move(*packet), handler);
        if (!response || !MediaSocket::send(mediaHelperSocket, encode(*response)))
            break;
        ::malloc_trim(0);
    }
    ::_exit(EXIT_SUCCESS);
}

} // namespace sela
