#include "platform/media/MediaMessages.h"

#include <cstdint>
#include <cstdlib>
#include <span>

// Reads arbitrary bytes as a helper's answer and as a client's request. What is accepted must be within the
// bounds that were asked for, and must survive being written and read again.

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const sela::DataView message = std::as_bytes(std::span(bytes, size));
    for (const auto operation : {sela::MediaOperation::decodePicture, sela::MediaOperation::readDuration,
                                 sela::MediaOperation::copyFrame}) {
        sela::MediaRequest request;
        request.number = size > 0 ? bytes[0] : 0;
        request.operation = operation;
        request.maximumSide = operation == sela::MediaOperation::readDuration ? 0 : 320;
        const auto response = sela::decodeResponse(message, request);
        if (!response)
            continue;
        require(response->width <= request.maximumSide && response->height <= request.maximumSide);
        require(response->time.timescale > 0 && response->number == request.number);
        require(sela::decodeResponse(sela::encode(*response), request) == response);
    }
    if (const auto request = sela::decodeRequest(message)) {
        require(request->maximumSide <= sela::maximumPictureSide);
        require(sela::decodeRequest(sela::encode(*request)) == request);
    }
    return 0;
}
