#include "share/MediaHelpers.h"

#include "media/MediaSamples.h"
#include "support/LogCapture.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace sela {
namespace {

namespace fs = std::filesystem;

constexpr int side = 320;

URL sampleURL(const std::string& name) {
    return URL::fileURL(sample(name));
}

/// A copy of a sample under another name, gone with this object.
class RenamedSample {
public:
    RenamedSample(const std::string& name, const std::string& newName) {
        std::string folder = fs::temp_directory_path() / "sela-helpers-XXXXXX";
        folder_ = ::mkdtemp(folder.data());
        fs::copy_file(sample(name), folder_ / newName);
        url_ = URL::fileURL((folder_ / newName).string());
    }
    ~RenamedSample() { fs::remove_all(folder_); }
    RenamedSample(const RenamedSample&) = delete;
    RenamedSample& operator=(const RenamedSample&) = delete;

    const URL& url() const { return url_; }

private:
    fs::path folder_;
    URL url_ = URL::fileURL("/");
};

int coverFrame(const std::string& name) {
    const UIImage cover = getVideoCover(sampleURL(name), side);
    return cover.pixels() ? frameNumber(*cover.pixels()) : -1;
}

TEST(VideoCover, LiesAQuarterOfTheWayIn) {
    const LogCapture log;
    // At 14.654 s, 10 frames a second, 0.1 s tolerance.
    EXPECT_GE(coverFrame("minute.mp4"), 145);
    EXPECT_LE(coverFrame("minute.mp4"), 147);
    // At 1.465 s.
    EXPECT_GE(coverFrame("hevc.mov"), 13);
    EXPECT_LE(coverFrame("hevc.mov"), 15);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST(VideoCover, IsTheMiddleOfAShortVideo) {
    const LogCapture log;
    // At 0.75 s of 1.5 s, 20 frames a second.
    EXPECT_GE(coverFrame("second.mp4"), 13);
    EXPECT_LE(coverFrame("second.mp4"), 17);
    EXPECT_EQ(coverFrame("short.mp4"), 0);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST(VideoCover, IsUpright) {
    const UIImage cover = getVideoCover(sampleURL("portrait.mp4"), side);
    EXPECT_EQ(cover.width(), 180);
    EXPECT_EQ(cover.height(), 320);
}

TEST(VideoCover, WithoutDurationIsTakenAtTheStart) {
    const LogCapture log;
    EXPECT_LE(coverFrame("absurd.mp4"), 2);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST(VideoCover, OfAVideoThatIsCutBeforeIsItsFirstFrame) {
    const RenamedSample cut("minute.mp4", "cut.mp4");
    fs::resize_file(cut.url().path(), fs::file_size(cut.url().path()) * 3 / 10);
    const LogCapture log;
    const UIImage cover = getVideoCover(cut.url(), side);
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

TEST(FileSize, IsThatOfTheFileOrZero) {
    const LogCapture log;
    EXPECT_EQ(getFileSize(sampleURL("baseline.jpg")),
              static_cast<std::int64_t>(fs::file_size(sample("baseline.jpg"))));
    EXPECT_EQ(getFileSize(sampleURL("empty.mp4")), 0);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
    EXPECT_EQ(getFileSize(URL::fileURL("/no/such\nfile")), 0);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"URL: getFileSize failed, path = /no/such\\nfile"});
}

TEST(Thumbnail, IsChosenByTypeThenNameThenContent) {
    struct Case {
        const char* content;
        const char* name;
        const char* type;
        const char* asset; ///< the asset's name; empty for pixels
    };
    for (const Case& each : {
             Case{"baseline.jpg", "song.MP3", "public.data", "audiosmall"},   // by its name alone
             Case{"minute.mp4", "clip.mp4", "org.example.mp3", "audiosmall"}, // the type goes before the name
             Case{"minute.mp4", "clip.mp4", "com.example.M4A", "audiosmall"}, // upper case
             Case{"second.mp4", "voice.m4a", "public.mpeg-4", "audiosmall"},  // audio goes before video
             Case{"baseline.jpg", "photo.jpg", "public.mp3.jpeg", ""},        // not the last part
             Case{"second.mp4", "clip", "com.example.quicktime-MOVie", ""},     // contains "mov"
             Case{"second.mp4", "clip.jpg", "public.mpeg-4", ""},             // the type, not the name
             Case{"second.mp4", "clip.bin", "com.example.m4v-video", ""},
             Case{"baseline.jpg", "photo.jpg", "public.mpeg-4", "SelaPicture"}, // a video by type only
             Case{"baseline.jpg", "clip.mp4", "public.jpeg", ""},
             Case{"plain.heic", "photo.jpg", "public.jpeg", ""},
         }) {
        const RenamedSample file(each.content, each.name);
        const LogCapture log;
        const auto image = thumbnailOfSharedFile(file.url(), each.type, side);
        ASSERT_TRUE(image) << each.name << " " << each.type;
        EXPECT_EQ(image->assetName(), each.asset) << each.name << " " << each.type;
    }
}

TEST(Thumbnail, IsAbsentForAFileThatIsNoPicture) {
    for (const auto& [content, type] :
         {std::pair("text.jpg", "public.jpeg"), std::pair("second.mp4", "public.data"),
          std::pair("cut-baseline.jpg", "public.jpeg")}) {
        const LogCapture log;
        EXPECT_FALSE(thumbnailOfSharedFile(sampleURL(content), type, side)) << content;
        EXPECT_EQ(log.lines(),
                  std::vector<std::string>{std::string("loadThumbnails: failed to decode image fileName = ") +
                                           content});
    }
}

} // namespace
} // namespace sela
