#include "mediaservice/RequestLoop.h"
#include "mediaservice/pictures/JPEGWriter.h"
#include "mediaservice/pictures/PictureDecoder.h"
#include "platform/foundation/Dumpable.h"

#include <libheif/heif.h>

namespace {

// The most memory that a picture may need: 200 megapixels of HEVC, or 100 of more than 8 bits,
// take about 900 MB.
constexpr sela::Sandbox::Limits limits{.addressSpace = std::uint64_t{1536} << 20, .cpuSeconds = 120};

sela::MediaOutcome decode(const sela::MediaRequest& request, const sela::InputFile& file) {
    using Wants = sela::PictureTarget::Wants;
    auto pixels =
        sela::decodePicture(file, request.bounds(), request.wholeOnly ? Wants::whole : Wants::whatThereIs);
    if (!pixels)
        return {};
    sela::MediaOutcome outcome;
    outcome.status = sela::MediaStatus::done;
    outcome.pixels = std::move(*pixels);
    return outcome;
}

sela::MediaOutcome encode(const sela::MediaRequest& request, const sela::InputFile& file, int memory) {
    sela::JPEGWriter writer(memory, static_cast<int>(request.quality));
    if (request.maximumSide == 0) {
        if (!sela::readPicture(file, writer))
            return {};
    } else {
        const std::optional<sela::PixelBuffer> pixels = sela::decodePicture(file, request.bounds());
        if (!pixels)
            return {};
        writer.begin(sela::PictureRows::of({pixels->width, pixels->height}));
        const std::size_t rowSize = std::size_t{4} * static_cast<std::size_t>(pixels->width);
        for (std::size_t start = 0; start < pixels->bytes.size(); start += rowSize)
            writer.addRow(pixels->bytes.data() + start);
    }
    const std::optional<std::int64_t> size = writer.finish();
    if (!size)
        return {};
    sela::MediaOutcome outcome;
    outcome.status = sela::MediaStatus::done;
    outcome.fileSize = static_cast<std::uint64_t>(*size);
    return outcome;
}

sela::MediaOutcome answer(const sela::MediaRequest& request, const sela::InputFile& file, int memory) {
    switch (request.operation) {
    case sela::MediaOperation::decodePicture:
        return decode(request, file);
    case sela::MediaOperation::encodePicture:
        return encode(request, file, memory);
    case sela::MediaOperation::readDuration:
    case sela::MediaOperation::copyFrame:
        return {};
    }
    return {};
}

} // namespace

int main() {
    sela::makeUndumpable();
    // Its codecs register themselves, which must not wait for the first file.
    if (heif_init(nullptr).code != heif_error_Ok)
        return 69;
    return sela::serveRequests(limits, answer);
}
