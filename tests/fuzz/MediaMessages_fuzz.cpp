#include "fuzz/FuzzTarget.h"
#include "platform/media/MediaMessages.h"

// Reads arbitrary bytes as a helper's answer and as a client's request. What is accepted must be within the
// bounds that were asked for, and must survive being written and read again.
void fuzz(sela::DataView input) {
    for (const auto operation : {sela::MediaOperation::decodePicture, sela::MediaOperation::readDuration,
                                 sela::MediaOperation::copyFrame, sela::MediaOperation::encodePicture}) {
        sela::MediaRequest request;
        request.number = input.empty() ? 0 : std::to_integer<std::uint32_t>(input.front());
        request.operation = operation;
        request.maximumSide =
            operation == sela::MediaOperation::decodePicture || operation == sela::MediaOperation::copyFrame
                ? 320
                : 0;
        const auto response = sela::decodeResponse(input, request);
        if (!response)
            continue;
        require(response->fileSize <= request.memorySize());
        require(response->width <= request.maximumSide && response->height <= request.maximumSide);
        require(response->time.timescale > 0 && response->number == request.number);
        require(sela::decodeResponse(sela::encode(*response), request) == response);
    }
    if (const auto request = sela::decodeRequest(input)) {
        require(request->maximumSide <= sela::maximumPictureSide);
        require(sela::decodeRequest(sela::encode(*request)) == request);
    }
}
