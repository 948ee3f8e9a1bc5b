#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/Sandbox.h"
#include "platform/media/MediaMessages.h"
#include "platform/media/UIImage.h"

#include <functional>
#include <optional>

namespace sela {

/// What a helper made of one request.
struct MediaOutcome {
    MediaStatus status = MediaStatus::unreadable;
    PixelBuffer pixels; ///< empty when the request asks for none
    CMTime time;
    std::uint32_t framesDecoded = 0;
    std::uint64_t fileSize = 0; ///< of the file that was written into the shared memory
};

/// Handles one request on `file`. A file that it makes is written to `memory`, a descriptor of shared memory
/// that is valid during the call (-1 when the request needs none).
using RequestHandler = std::function<MediaOutcome(const MediaRequest& request, InputFile file, int memory)>;

/// Enters the sandbox and answers requests on `mediaHelperSocket` until the client closes its end, at which
/// the process exits at once even in the middle of a request. Returns the exit status when it cannot start.
/// `handler` is called on this thread, one request at a time; a failed allocation counts as an unreadable
/// file.
int serveRequests(const Sandbox::Limits& limits, const RequestHandler& handler);

} // namespace sela
