#include "mediaservice/RequestLoop.h"
#include "mediaservice/pictures/PictureDecoder.h"
#include "platform/foundation/Dumpable.h"

#include <libheif/heif.h>

namespace {

// The most that a picture may need: 144 megapixels of HEVC take about 900 MB.
constexpr sela::Sandbox::Limits limits{.addressSpace = std::uint64_t{1536} << 20, .cpuSeconds = 120};

sela::MediaOutcome decode(const sela::MediaRequest& request, const sela::InputFile& file) {
    if (request.operation != sela::MediaOperation::decodePicture)
        return {};
    auto pixels = sela::decodePicture(file, request.bounds());
    if (!pixels)
        return {};
    sela::MediaOutcome outcome;
    outcome.status = sela::MediaStatus::done;
    outcome.pixels = std::move(*pixels);
    return outcome;
}

} // namespace

int main() {
    sela::makeUndumpable();
    // Its codecs register themselves, which must not wait for the first file.
    if (heif_init(nullptr).code != heif_error_Ok)
        return 69;
    return sela::serveRequests(limits, decode);
}
