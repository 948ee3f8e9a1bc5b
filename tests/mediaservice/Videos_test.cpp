#include "media/MediaSamples.h"
#include "platform/media/AVAssetImageGenerator.h"
#include "platform/media/AVError.h"

#include <gtest/gtest.h>

namespace sela {
namespace {

AVAsset asset(const std::string& name) {
    return AVAsset::assetWithURL(URL::fileURL(sample(name)));
}

AVAssetImageGenerator generator(const std::string& name, double tolerance) {
    AVAssetImageGenerator made(asset(name));
    made.requestedTimeToleranceBefore = made.requestedTimeToleranceAfter =
        CMTime::fromSeconds(tolerance, 1000);
    return made;
}

TEST(Videos, HaveADuration) {
    struct Case {
        const char* name;
        double seconds;
    };
    for (const Case& each : {Case{"short.mp4", 0.1}, Case{"second.mp4", 1.5}, Case{"minute.mp4", 60},
                             Case{"hevc.mov", 6}, Case{"vp9.webm", 6}, Case{"mpeg1.mpeg", 6},
                             Case{"mpeg2.mpeg", 6}, Case{"absurd.mp4", 0}, Case{"cut-minute.mp4", 60},
                             Case{"cut-second.mp4", 0}, Case{"empty.mp4", 0}, Case{"audio-only.mp4", 0},
                             Case{"jpeg-named.mp4", 0}, Case{"text.jpg", 0}, Case{"missing.mp4", 0}}) {
        const CMTime duration = asset(each.name).duration();
        EXPECT_NEAR(duration.seconds(), each.seconds, 0.25) << each.name;
        EXPECT_GT(duration.timescale, 0) << each.name;
    }
}

TEST(Videos, GiveTheFrameOfATime) {
    struct Case {
        const char* name;
        double seconds;
        double tolerance;
        int firstFrame; ///< of those that are right
        int lastFrame;
    };
    for (const Case& each : {
             Case{"minute.mp4", 14.65, 0.1, 146, 147}, // between key frames
             Case{"minute.mp4", 14.65, 0, 146, 146},   // the frame that is shown then
             Case{"minute.mp4", 15.04, 0.1, 150, 150}, // key frame before
             Case{"minute.mp4", 14.93, 0.1, 150, 150}, // key frame after
             Case{"minute.mp4", 59.95, 0.1, 599, 599},
             Case{"minute.mp4", 0, 0, 0, 0},
             Case{"fragmented.mp4", 14.65, 0.1, 146, 147},
             Case{"second.mp4", 0.75, 0.1, 13, 17},
             Case{"slow.mp4", 5.5, 0.1, 2, 2},  // a frame every two seconds
             Case{"slow.mp4", 19.9, 0.1, 9, 9}, // the last one is shown to the end
             Case{"hevc.mov", 1.466, 0.1, 14, 15},
             Case{"vp9.webm", 1.466, 0.1, 14, 15},
             Case{"mpeg1.mpeg", 1.466, 0.1, 34, 39},
             Case{"mpeg2.mpeg", 1.466, 0.1, 34, 39},
             Case{"cut-minute.mp4", 14.65, 0.1, 146, 147}, // before the cut
             Case{"far.mp4", 19, 0.1, 473, 473},           // the first of the window, after 472 others
             Case{"8bps.mov", 0.5, 0.1, 4, 6},
             Case{"cinepak.mov", 0.5, 0.1, 4, 6},
             Case{"dnxhd.mov", 0.5, 0.1, 4, 6},
             Case{"mjpeg.mov", 0.5, 0.1, 4, 6},
             Case{"png.mov", 0.5, 0.1, 4, 6},
             Case{"qtrle.mov", 0.5, 0.1, 4, 6},
             Case{"rawvideo.mov", 0.5, 0.1, 4, 6},
             Case{"svq1.mov", 0.5, 0.1, 4, 6},
         }) {
        CMTime actual;
        const auto image = generator(each.name, each.tolerance)
                               .copyCGImageAtTime(CMTime::fromSeconds(each.seconds, 1000), &actual);
        ASSERT_TRUE(image) << each.name << " " << each.seconds;
        const int number = frameNumber(*image.value().pixels());
        EXPECT_GE(number, each.firstFrame) << each.name << " " << each.seconds;
        EXPECT_LE(number, each.lastFrame) << each.name << " " << each.seconds;
        EXPECT_LE(actual.seconds(), each.seconds + each.tolerance + 0.001) << each.name;
    }
}

TEST(Videos, GiveFramesFarFromAKeyFrameAsTheyAreWhenAllBeforeThemAreDecoded) {
    for (const char* codec : {"h264", "hevc", "mpeg4", "vp9", "av1"}) {
        const std::string name = std::string("moving-") + codec;
        const AVAssetImageGenerator far = generator(name + ".mp4", 0);
        const AVAssetImageGenerator whole = generator(name + "-whole.mp4", 0);
        for (int frame = 60; frame < 70; ++frame) {
            const CMTime time = CMTime::fromSeconds((frame + 0.5) / 25, 1000);
            const auto found = far.copyCGImageAtTime(time);
            const auto expected = whole.copyCGImageAtTime(time);
            ASSERT_TRUE(found && expected) << name << " " << frame;
            EXPECT_EQ(found.value().pixels()->bytes, expected.value().pixels()->bytes)
                << name << " " << frame;
        }
    }
}

TEST(Videos, WithoutAFrameWithinTheToleranceFail) {
    for (const double seconds : {75.0, 1e9}) {
        const auto image = generator("minute.mp4", 0.1).copyCGImageAtTime(CMTime::fromSeconds(seconds, 1000));
        const auto* error = dynamic_cast<const NSError*>(image.error().get());
        ASSERT_TRUE(error) << seconds;
        EXPECT_EQ(error->code(), AVErrorNoImageAtTime) << seconds;
    }
    EXPECT_FALSE(generator("cut-minute.mp4", 0.1).copyCGImageAtTime({50, 1}));
    for (const char* name : {"cut-second.mp4", "empty.mp4", "audio-only.mp4", "jpeg-named.mp4", "missing.mp4",
                             "ffv1.mov"}) // whose codec no camera writes
        EXPECT_FALSE(generator(name, 0.1).copyCGImageAtTime(kCMTimeZero)) << name;
}

TEST(Videos, InfiniteToleranceTakesAKeyFrame) {
    AVAssetImageGenerator made(asset("minute.mp4"));
    for (const auto& [seconds, number] : {std::pair(0, 0), std::pair(14, 100), std::pair(1000, 550)}) {
        const auto image = made.copyCGImageAtTime({seconds, 1});
        ASSERT_TRUE(image) << seconds;
        EXPECT_EQ(frameNumber(*image.value().pixels()), number) << seconds;
    }
}

TEST(Videos, AreTurnedUprightOnlyWhenAsked) {
    // Stored, the upper half is black (the number of the first frame is 0), the lower half red and blue.
    for (const auto& [name, upright] :
         {std::pair("portrait.mp4", "kbkr"), std::pair("portrait-other.mp4", "rkbk")}) {
        AVAssetImageGenerator made = generator(name, 0);
        const auto stored = made.copyCGImageAtTime(kCMTimeZero);
        made.appliesPreferredTrackTransform = true;
        const auto turned = made.copyCGImageAtTime(kCMTimeZero);
        ASSERT_TRUE(stored && turned) << name;
        EXPECT_EQ(stored.value().width(), 320) << name;
        EXPECT_EQ(quarters(*stored.value().pixels()), "kkrb") << name;
        EXPECT_EQ(turned.value().width(), 180) << name;
        EXPECT_EQ(turned.value().height(), 320) << name;
        EXPECT_EQ(quarters(*turned.value().pixels()), upright) << name;
    }
}

TEST(Videos, AreScaledOnceAndStretchedToSquarePixels) {
    AVAssetImageGenerator made = generator("wide.mp4", 0.1);
    const auto whole = made.copyCGImageAtTime(kCMTimeZero);
    made.maximumSize = 100;
    const auto small = made.copyCGImageAtTime(kCMTimeZero);
    ASSERT_TRUE(whole && small);
    EXPECT_EQ(whole.value().width(), 640);
    EXPECT_EQ(whole.value().height(), 180);
    EXPECT_EQ(small.value().width(), 100);
    EXPECT_EQ(small.value().height(), 28);
}

TEST(Videos, OfEitherColourRangeShowBlackAndWhite) {
    for (const char* name : {"second.mp4", "full-range.mp4"}) {
        const auto image = generator(name, 0).copyCGImageAtTime(kCMTimeZero);
        ASSERT_TRUE(image) << name;
        const PixelBuffer& pixels = *image.value().pixels();
        EXPECT_LE(pixelAt(pixels, 0.5, 0.25) >> 24, 8U) << name;
        EXPECT_EQ(colourName(pixelAt(pixels, 0.25, 0.75)), 'r') << name;
    }
}

TEST(Videos, OfAHighDynamicRangeShowPaperAsNearlyWhiteAndGreyAsGrey) {
    for (const char* name : {"smpte2084.mp4", "arib-std-b67.mp4"}) {
        const auto image = generator(name, 0.1).copyCGImageAtTime(kCMTimeZero);
        ASSERT_TRUE(image) << name;
        for (const auto& [x, level] : {std::pair(0.25, 225), std::pair(0.75, 100)})
            for (const int shift : {24, 16, 8})
                EXPECT_NEAR(pixelAt(*image.value().pixels(), x, 0.5) >> shift & 0xFF, level, 8) << name;
    }
}

} // namespace
} // namespace sela
