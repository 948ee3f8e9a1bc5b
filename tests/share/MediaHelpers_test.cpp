#include "share/MediaHelpers.h"

#include "media/MediaSamples.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace sela {
namespace {

namespace fs = std::filesystem;

constexpr int side = 320;

URL sampleURL(const std::string& name) {
    return URL::fileURL(sample(name));
}

TEST(VideoCover, LiesAQuarterOfTheWayInOrInTheMiddleOfAShortVideoAndIsUpright) {
    const struct {
        const char* name;
        int first; ///< of the frames that lie within the tolerance
        int last;
    } covers[] = {
        {"minute.mp4", 145, 147},                       // at 14.654 s, 10 frames a second, 0.1 s tolerance
        {"hevc.mov", 13, 15},                           // at 1.465 s
        {"second.mp4", 13, 17},                         // at 0.75 s of 1.5 s, 20 frames a second
        {"short.mp4", 0, 0},      {"absurd.mp4", 0, 2}, // without a duration it is taken at the start
    };
    const LogCapture log;
    for (const auto& [name, first, last] : covers) {
        const UIImage cover = getVideoCover(sampleURL(name), side);
        ASSERT_TRUE(cover.pixels()) << name;
        EXPECT_GE(frameNumber(*cover.pixels()), first) << name;
        EXPECT_LE(frameNumber(*cover.pixels()), last) << name;
    }
    const UIImage upright = getVideoCover(sampleURL("portrait.mp4"), side);
    EXPECT_EQ(std::pair(upright.width(), upright.height()), std::pair(180.0, 320.0));
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST(VideoCover, OfAVideoThatIsCutBeforeIsItsFirstFrame) {
    const TemporaryHome home;
    const std::string whole = contentOf(sample("minute.mp4"));
    const fs::path cut = home.write("cut.mp4", whole.substr(0, whole.size() * 3 / 10));
    const LogCapture log;
    const UIImage cover = getVideoCover(URL::fileURL(cut.string()), side);
    ASSERT_TRUE(cover.pixels());
    EXPECT_EQ(frameNumber(*cover.pixels()), 0);
    // 60 / 4.0943445622221.
    EXPECT_EQ(log.lines(), std::vector<std::string>{"getVideoCover first trial failed, timescale = 10240, "
                                                    "seconds = 14.654360200558338, duration = 60.0"});
}

TEST(VideoCover, OfNoVideoIsThePlaceholder) {
    for (const char* name : {"empty.mp4", "audio-only.mp4", "jpeg-named.mp4", "text.jpg", "missing.mp4"}) {
        const LogCapture log;
        const UIImage cover = getVideoCover(sampleURL(name), side);
        EXPECT_EQ(cover.assetName(), "SelaPicture") << name;
        const bool missing = std::string_view(name) == "missing.mp4";
        const auto size = missing ? 0 : fs::file_size(sample(name));
        std::vector<std::string> expected{
            "getVideoCover first trial failed, timescale = 1, seconds = 0.0, duration = 0.0"};
        if (missing)
            expected.push_back("URL: getFileSize failed, path = " + sample(name));
        expected.push_back("getVideoCover second trial failed, timescale = 1, fileSize = " +
                           std::to_string(size) + ", duration = 0.0");
        EXPECT_EQ(log.lines(), expected) << name;
    }
}

TEST(Thumbnail, IsChosenByTypeThenNameThenContentAndAbsentForWhatIsNoPicture) {
    struct Case {
        const char* content;
        const char* name;
        const char* type;
        const char* asset; ///< the asset's name; empty for pixels, null for no thumbnail
    };
    for (const Case& each : {
             Case{"baseline.jpg", "song.MP3", "public.data", "audiosmall"},   // by its name alone
             Case{"minute.mp4", "clip.mp4", "org.example.mp3", "audiosmall"}, // the type goes before the name
             Case{"minute.mp4", "clip.mp4", "com.example.M4A", "audiosmall"}, // upper case
             Case{"second.mp4", "voice.m4a", "public.mpeg-4", "audiosmall"},  // audio goes before video
             Case{"baseline.jpg", "photo.jpg", "public.mp3.jpeg", ""},        // not the last part
             Case{"second.mp4", "clip", "com.example.quicktime-MOVie", ""},   // contains "mov"
             Case{"second.mp4", "clip.jpg", "public.mpeg-4", ""},             // the type, not the name
             Case{"second.mp4", "clip.bin", "com.example.m4v-video", ""},
             Case{"baseline.jpg", "photo.jpg", "public.mpeg-4", "SelaPicture"}, // a video by type only
             Case{"baseline.jpg", "clip.mp4", "public.jpeg", ""},
             Case{"plain.heic", "photo.jpg", "public.jpeg", ""},
             Case{"text.jpg", "text.jpg", "public.jpeg", nullptr},
             Case{"second.mp4", "second.mp4", "public.data", nullptr},
             Case{"cut-10-photo.jpg", "cut.jpg", "public.jpeg", nullptr},
         }) {
        const TemporaryHome home;
        const fs::path file = home.write(each.name, contentOf(sample(each.content)));
        const LogCapture log;
        const auto image = thumbnailOfSharedFile(URL::fileURL(file.string()), each.type, side);
        SCOPED_TRACE(each.name + std::string(" ") + each.type);
        ASSERT_EQ(image.has_value(), each.asset != nullptr);
        if (image)
            EXPECT_EQ(image->assetName(), each.asset);
        else
            EXPECT_EQ(log.lines(), std::vector{"loadThumbnails: failed to decode image fileName = " +
                                               std::string(each.name)});
    }
}

} // namespace
} // namespace sela
