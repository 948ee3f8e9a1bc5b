#include "media/MediaSamples.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/media/AVAssetImageGenerator.h"
#include "platform/media/AVError.h"
#include "platform/media/MediaServiceClient.h"
#include "platform/media/UIImage.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sys/mman.h>

namespace sela {
namespace {

/// How many mutated files of each kind are decoded. The environment's SELA_MUTATIONS asks for more.
int mutations() {
    const char* wanted = std::getenv("SELA_MUTATIONS");
    return wanted ? std::atoi(wanted) : 25;
}

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Damages a file as storage and attackers do: bytes changed (more often in its head, where the structure
/// is), a number made extreme, a part repeated or left out, the end cut off.
std::string mutated(std::string content, std::mt19937& random) {
    const auto place = [&] {
        const std::size_t reach = random() % 2 ? std::min<std::size_t>(content.size(), 512) : content.size();
        return random() % reach;
    };
    for (int changes = 1 + static_cast<int>(random() % 8); changes > 0 && content.size() > 16; --changes) {
        switch (random() % 5) {
        case 0:
        case 1:
            content[place()] = static_cast<char>(random());
            break;
        case 2:
            content.replace(std::min(place(), content.size() - 4), 4, 4, random() % 2 ? '\xFF' : '\0');
            break;
        case 3:
            content.erase(place(), 1 + random() % 64);
            break;
        default:
            content.insert(place(), content.substr(place(), 1 + random() % 64));
            break;
        }
    }
    if (random() % 8 == 0 && !content.empty())
        content.resize(1 + random() % content.size());
    return content;
}

/// A file that exists in memory only.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : descriptor_(::memfd_create("mutated", MFD_CLOEXEC)) {
        EXPECT_EQ(::write(descriptor_.get(), content.data(), content.size()),
                  static_cast<ssize_t>(content.size()));
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_.get()); }

private:
    FileDescriptor descriptor_;
};

std::ptrdiff_t openDescriptors() {
    namespace fs = std::filesystem;
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// The private memory of this process in bytes.
long privateMemory() {
    long size = 0;
    long resident = 0;
    long shared = 0;
    std::ifstream("/proc/self/statm") >> size >> resident >> shared;
    return (resident - shared) * ::sysconf(_SC_PAGESIZE);
}

bool endedItsHelper(const ErrorRef& error) {
    const auto* known = dynamic_cast<const NSError*>(error.get());
    return known && known->domain() == AVFoundationErrorDomain &&
           known->code() == AVErrorMediaServicesWereReset;
}

// Numbers of assets that no other test uses.
constexpr std::uint32_t firstAsset = 1000;

class MutatedFiles : public testing::TestWithParam<const char*> {};

TEST_P(MutatedFiles, CostNothingButTheirThumbnail) {
    const std::string name = GetParam();
    const bool isVideo = !UIImage::contentsOfFile(sample(name), 64);
    const std::string original = contents(sample(name));
    ASSERT_FALSE(original.empty());
    if (isVideo) { // starts the helper, whose socket counts below
        const AVAssetImageGenerator generator(AVAsset::assetWithURL(URL::fileURL(sample(name))));
        ASSERT_TRUE(generator.copyCGImageAtTime({1, 1}));
    }
    const auto descriptors = openDescriptors();
    [[maybe_unused]] const long memory = privateMemory();
    std::mt19937 random(4);
    for (int i = 0; i < mutations(); ++i) {
        const MemoryFile file(mutated(original, random));
        MediaRequest request;
        request.maximumSide = 64;
        if (isVideo) {
            request.operation = MediaOperation::copyFrame;
            request.asset = firstAsset + static_cast<std::uint32_t>(i);
            request.time = {1, 2};
            request.toleranceBefore = request.toleranceAfter = {1, 10};
        }
        const auto answer = MediaServiceClient::shared().perform(file.path(), request);
        EXPECT_FALSE(endedItsHelper(answer.error())) << name << " " << i;
    }
    EXPECT_EQ(openDescriptors(), descriptors);
#ifndef SELA_SANITIZED // which delay freeing memory
    EXPECT_LT(privateMemory() - memory, 32L << 20);
#endif
    EXPECT_TRUE(UIImage::contentsOfFile(sample("baseline.jpg"), 64));
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, MutatedFiles,
                         testing::Values("baseline.jpg", "progressive.jpg", "cmyk.jpg", "profile.jpg",
                                         "quarters.png", "interlaced.png", "palette.png", "perceptual.png",
                                         "animated.gif", "plain.bmp", "palette.bmp", "os2.bmp",
                                         "alpha-bits.bmp", "runs-8.bmp", "runs-4.bmp", "runs-24.bmp",
                                         "indexed.pict", "direct.pict", "quicktime.pict", "gain-map.heic",
                                         "lossy.webp", "alpha.webp", "animated.webp", "plain.heic",
                                         "thumbnail.heic", "preview.dng", "second.mp4", "fragmented.mp4",
                                         "hevc.mov", "vp9.webm", "mpeg1.mpeg", "mpeg2.mpeg", "8bps.mov",
                                         "cinepak.mov", "dnxhd.mov", "mjpeg.mov", "png.mov", "qtrle.mov",
                                         "rawvideo.mov", "rpza.mov", "smc.mov", "svq1.mov"));

} // namespace
} // namespace sela
