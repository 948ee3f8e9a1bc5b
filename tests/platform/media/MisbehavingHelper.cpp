#include "platform/media/MediaHelperProcess.h"
#include "platform/media/MediaMessages.h"
#include "platform/media/MediaSocket.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>

// A media helper that misbehaves as its input file says, to test that the client handles it.

namespace {

using namespace sela;

std::string contents(int descriptor) {
    char text[64];
    const ssize_t size = ::pread(descriptor, text, sizeof text, 0);
    return {text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

Data responseTo(const MediaRequest& request, const std::string& behaviour) {
    MediaResponse response;
    response.number = request.number;
    response.status = MediaStatus::done;
    response.width = response.height = 1;
    if (behaviour == "answer another request")
        ++response.number;
    if (behaviour == "claim too many pixels")
        response.width = response.height = 0x7FFFFFFF;
    Data bytes = encode(response);
    if (behaviour == "answer too short")
        bytes.pop_back();
    if (behaviour == "answer too long")
        bytes.resize(100000);
    return bytes;
}

} // namespace

int main() {
    bool isUsed = false;
    while (const auto packet = MediaSocket::receive(mediaHelperSocket)) {
        const auto request = decodeRequest(packet->bytes);
        const std::string behaviour = contents(packet->descriptors.front().get());
        if (!request)
            return EXIT_FAILURE;
        if (behaviour == "crash")
            ::raise(SIGKILL);
        if (behaviour == "hang")
            ::pause();
        if (behaviour == "exit")
            return EXIT_SUCCESS;
        if (behaviour == "end when used" && isUsed)
            return EXIT_SUCCESS;
        isUsed = true;
        MediaSocket::send(mediaHelperSocket, responseTo(*request, behaviour));
    }
    return EXIT_SUCCESS;
}
