#include "platform/foundation/MonotonicClock.h"
#include "platform/media/AVAssetImageGenerator.h"
#include "platform/media/MediaServiceClient.h"
#include "platform/media/UIImage.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

// Decodes files as the share screen does and prints the time and memory that took: the program that `run`
// measures.
//
//     decode-files picture|cover SIDE [--write FILE.pam] FILE...

namespace {

using namespace sela;

/// The most memory that a process ever had resident, in KiB; 0 when it has ended.
long peakMemory(const std::string& process) {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::strtol(line.c_str() + 6, nullptr, 10);
    return 0;
}

Result<MediaServiceClient::Answer> decode(bool cover, const std::string& path, std::uint32_t side,
                                          std::uint32_t asset) {
    MediaRequest request;
    request.operation = MediaOperation::decodePicture;
    request.maximumSide = side;
    request.asset = asset;
    if (!cover)
        return MediaServiceClient::shared().perform(path, request);
    MediaRequest question = request;
    question.operation = MediaOperation::readDuration;
    question.maximumSide = 0;
    const auto duration = MediaServiceClient::shared().perform(path, question);
    if (!duration)
        return duration.error();
    const CMTime length = duration.value().response.time;
    request.operation = MediaOperation::copyFrame;
    request.time = CMTime::fromSeconds(length.seconds() / 4, length.timescale);
    request.toleranceBefore = request.toleranceAfter = CMTime::fromSeconds(0.1, length.timescale);
    request.appliesTrackTransform = true;
    return MediaServiceClient::shared().perform(path, request);
}

} // namespace

int main(int count, char** arguments) {
    if (count < 4)
        return 64;
    const bool cover = std::string_view(arguments[1]) == "cover";
    const auto side = static_cast<std::uint32_t>(std::strtoul(arguments[2], nullptr, 10));
    std::string output;
    int status = 0;
    for (int i = 3; i < count; ++i) {
        if (std::string_view(arguments[i]) == "--write" && i + 1 < count) {
            output = arguments[++i];
            continue;
        }
        const double start = monotonicSeconds();
        auto answer = decode(cover, arguments[i], side, static_cast<std::uint32_t>(i));
        const double milliseconds = (monotonicSeconds() - start) * 1000;
        if (!answer) {
            std::printf("%s: %s\n", arguments[i], answer.error()->localizedDescription().c_str());
            status = 1;
            continue;
        }
        const MediaResponse& response = answer.value().response;
        std::printf("%s: %ux%u at %.3f s, %u frames decoded, %.0f ms\n", arguments[i], response.width,
                    response.height, response.time.seconds(), response.framesDecoded, milliseconds);
        if (!output.empty()) {
            const PixelBuffer& pixels = answer.value().pixels;
            std::ofstream(output, std::ios::binary)
                << "P7\nWIDTH " << pixels.width << "\nHEIGHT " << pixels.height
                << "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n"
                << asText(std::as_bytes(std::span(pixels.bytes)));
        }
    }
    const auto helper = MediaServiceClient::shared().helperProcessIdentifier(
        cover ? MediaOperation::copyFrame : MediaOperation::decodePicture);
    std::printf("client %ld KiB, helper %ld KiB\n", peakMemory("self"),
                helper ? peakMemory(std::to_string(*helper)) : 0);
    return status;
}
