#include "host/GalleryController.h"
#include "host/OffscreenEnvironment.h"
#include "host/Snapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace sela {

namespace {

constexpr CGSize screenSize{375, 667};

/// How far two pictures are apart: the mean over all components, 0 to 255, and the share of pixels that
/// differ so much that anyone would see it.
struct Difference {
    double mean = 0;
    double visibleShare = 0;
};

Difference difference(const QImage& one, const QImage& other) {
    constexpr int visible = 48;
    double sum = 0;
    double differing = 0;
    for (int y = 0; y < one.height(); ++y) {
        const uchar* const a = one.constScanLine(y);
        const uchar* const b = other.constScanLine(y);
        for (int x = 0; x < one.width(); ++x) {
            int largest = 0;
            for (int component = 0; component < 3; ++component) {
                const int step = std::abs(a[4 * x + component] - b[4 * x + component]);
                sum += step;
                largest = std::max(largest, step);
            }
            differing += largest > visible;
        }
    }
    const double pixels = static_cast<double>(one.width()) * one.height();
    return {sum / (3 * pixels), differing / pixels};
}

struct Look {
    const char* name;
    UIUserInterfaceStyle style;
    double pixelsPerPoint;
};

void PrintTo(const Look& look, std::ostream* stream) {
    *stream << look.name;
}

class GalleryPicture : public testing::TestWithParam<Look> {};

} // namespace

/// Compares with the pictures in tests/host/references, which people have looked at. SELA_WRITE_REFERENCES=1
/// writes them anew; every picture is kept in the build folder to look at.
TEST_P(GalleryPicture, LooksAsItsReference) {
    const Look& look = GetParam();
    OffscreenEnvironment environment;
    ViewPainter painter(environment.measurer);
    UIWindow window(screenSize);
    window.setUserInterfaceStyle(look.style);
    window.setRootViewController(std::make_shared<GalleryController>());

    const QImage picture =
        Snapshot::picture(window, painter, look.pixelsPerPoint).convertToFormat(QImage::Format_RGB32);
    ASSERT_TRUE(picture.save(QString(SELA_BINARY_DIR "/gallery-%1.png").arg(look.name)));
    const QString path = QString(SELA_SOURCE_DIR "/tests/host/references/gallery-%1.png").arg(look.name);
    if (std::getenv("SELA_WRITE_REFERENCES")) {
        ASSERT_TRUE(picture.save(path));
    }
    const QImage reference = QImage(path).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(reference.size(), picture.size());
    const Difference found = difference(picture, reference);
    EXPECT_LT(found.mean, 0.5);
    EXPECT_LT(found.visibleShare, 0.002);
}

INSTANTIATE_TEST_SUITE_P(Looks, GalleryPicture,
                         testing::Values(Look{"light", UIUserInterfaceStyle::light, 1},
                                         Look{"dark", UIUserInterfaceStyle::dark, 1},
                                         Look{"light-2x", UIUserInterfaceStyle::light, 2},
                                         Look{"dark-2x", UIUserInterfaceStyle::dark, 2}));

} // namespace sela
