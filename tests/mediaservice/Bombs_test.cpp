#include "media/MediaSamples.h"
#include "platform/foundation/MonotonicClock.h"
#include "platform/media/MediaServiceClient.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace sela {
namespace {

namespace fs = std::filesystem;

// Seconds that a request may take here, and an allowance for a busy machine.
constexpr double timeLimit = 5;
constexpr double slack = 8;

/// A number of kilobytes from /proc/PROCESS/status; 0 when it is not there.
long kilobytes(const std::string& process, const std::string& name) {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return std::stol(line.substr(name.size() + 1));
    return 0;
}

MediaRequest request(MediaOperation operation, std::uint32_t asset) {
    MediaRequest made;
    made.operation = operation;
    made.maximumSide = operation == MediaOperation::readDuration ? 0 : 64;
    made.asset = operation == MediaOperation::decodePicture ? 0 : asset;
    made.time = {15, 10};
    made.toleranceBefore = made.toleranceAfter = {1, 10};
    return made;
}

/// Files crafted to consume much time, memory or stack: each is requested as a picture and as a video.
TEST(Bombs, CostNoMoreThanTheyMay) {
    MediaServiceClient client({SELA_BINARY_DIR "/bin", timeLimit});
    const auto answers = [&](const char* name, MediaOperation operation) {
        return static_cast<bool>(client.perform(sample(name), request(operation, 0)));
    };
    ASSERT_TRUE(answers("baseline.jpg", MediaOperation::decodePicture));
    ASSERT_TRUE(answers("second.mp4", MediaOperation::copyFrame));
    const long memory = kilobytes("self", "RssAnon");

    std::uint32_t bombs = 0;
    for (const auto& entry : fs::directory_iterator(SELA_MEDIA_SAMPLES)) {
        const std::string name = entry.path().filename();
        if (!name.starts_with("bomb-"))
            continue;
        ++bombs;
        for (const auto operation :
             {MediaOperation::decodePicture, MediaOperation::readDuration, MediaOperation::copyFrame}) {
            const double start = monotonicSeconds();
            const auto answer = client.perform(entry.path(), request(operation, bombs));
            EXPECT_LT(monotonicSeconds() - start, timeLimit + slack) << name;
            if (answer) {
                const MediaResponse& response = answer.value().response;
                EXPECT_LE(std::max(response.width, response.height), 64U) << name;
                EXPECT_LE(response.time.seconds(), 31.0 * 24 * 3600) << name;
            }
        }
    }
    EXPECT_GE(bombs, 25U);
    EXPECT_LT(kilobytes("self", "RssAnon") - memory, 16 << 10);
    EXPECT_TRUE(answers("baseline.jpg", MediaOperation::decodePicture));
    EXPECT_TRUE(answers("second.mp4", MediaOperation::copyFrame));
}

} // namespace
} // namespace sela
