#include "mediaservice/RequestLoop.h"
#include "mediaservice/videos/VideoDecoder.h"
#include "platform/foundation/Dumpable.h"

namespace {

// Loading the codecs maps 190 MB; 8K video of 10 bits takes about 700 MB more.
constexpr sela::Sandbox::Limits limits{.addressSpace = std::uint64_t{1536} << 20, .cpuSeconds = 120};

} // namespace

int main() {
    sela::makeUndumpable();
    sela::VideoDecoder decoder;
    return sela::serveRequests(limits, [&](const sela::MediaRequest& request, sela::InputFile file, int) {
        return decoder.answer(request, std::move(file));
    });
}
