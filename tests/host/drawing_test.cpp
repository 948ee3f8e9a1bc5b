#include "host/Gallery.h"
#include "host/OffscreenEnvironment.h"
#include "host/Snapshot.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "support/RightToLeft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace sela {

namespace {

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
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y), b = other.pixel(x, y);
            const auto [red, green, blue] =
                std::array{qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b)};
            sum += std::abs(red) + std::abs(green) + std::abs(blue);
            differing += std::max({std::abs(red), std::abs(green), std::abs(blue)}) > visible;
        }
    const double pixels = static_cast<double>(one.width()) * one.height();
    return {sum / (3 * pixels), differing / pixels};
}

/// A window with the gallery and what draws it.
struct Gallery {
    explicit Gallery(UIUserInterfaceStyle style = UIUserInterfaceStyle::light) {
        window.setTraitCollection(style);
        window.setRootViewController(std::make_shared<GalleryController>());
    }

    OffscreenEnvironment environment;
    ViewPainter painter{environment.measurer};
    UIWindow window{{375, 667}};
};

/// One view of 40 by 40 points at (10, 10) on white, drawn at `scale` pixels to a point.
class SmallScene {
public:
    SmallScene() {
        window.setRootViewController(controller);
        controller->view().setBackgroundColor(UIColor::white());
        controller->view().addSubview(view);
    }

    QColor pixel(double x, double y, double scale = 1) {
        const QImage image = Snapshot::picture(window, painter, scale);
        return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
    }

    OffscreenEnvironment environment;
    ViewPainter painter{environment.measurer};
    std::shared_ptr<UIViewController> controller = std::make_shared<UIViewController>();
    UIView view{{10, 10, 40, 40}};
    UIWindow window{{60, 60}};
};

const UIColor red(1, 0, 0, 1);
const QColor redPixel(255, 0, 0);
const QColor whitePixel(255, 255, 255);

} // namespace

/// Compares with the pictures in tests/host/references, which people have looked at. SELA_WRITE_REFERENCES=1
/// writes them anew; every picture is kept in the build folder to look at.
TEST(Gallery, LooksAsItsReferences) {
    const struct {
        const char* name;
        UIUserInterfaceStyle style;
        double pixelsPerPoint;
    } looks[] = {{"light", UIUserInterfaceStyle::light, 1},
                 {"dark", UIUserInterfaceStyle::dark, 1},
                 {"light-2x", UIUserInterfaceStyle::light, 2},
                 {"dark-2x", UIUserInterfaceStyle::dark, 2}};
    for (const auto& [name, style, pixelsPerPoint] : looks) {
        SCOPED_TRACE(name);
        Gallery gallery(style);
        const QImage picture = Snapshot::picture(gallery.window, gallery.painter, pixelsPerPoint)
                                   .convertToFormat(QImage::Format_RGB32);
        ASSERT_TRUE(picture.save(QString(SELA_BINARY_DIR "/gallery-%1.png").arg(name)));
        const QString path = QString(SELA_SOURCE_DIR "/tests/host/references/gallery-%1.png").arg(name);
        if (std::getenv("SELA_WRITE_REFERENCES")) {
            ASSERT_TRUE(picture.save(path));
        }
        const QImage reference = QImage(path).convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(reference.size(), picture.size());
        const Difference found = difference(picture, reference);
        EXPECT_LT(found.mean, 0.5);
        EXPECT_LT(found.visibleShare, 0.002);
    }
}

/// What changed is drawn piece by piece, so pieces must add up to the whole, and touch nothing around them.
TEST(ViewPainter, DrawsPiecesThatAddUpToTheWhole) {
    Gallery gallery;
    for (const double scale : {1.0, 1.5}) {
        const QImage whole = Snapshot::picture(gallery.window, gallery.painter, scale);
        QImage pieces(whole.size(), whole.format());
        pieces.fill(Snapshot::backdrop(UIUserInterfaceStyle::light));
        for (int y = 0; y < whole.height(); y += 97)
            for (int x = 0; x < whole.width(); x += 61)
                gallery.painter.paint(pieces, QRect(x, y, 61, 97), gallery.window, {scale, {}});
        const Difference found = difference(whole, pieces);
        EXPECT_LT(found.mean, 0.01) << scale;
        EXPECT_EQ(found.visibleShare, 0) << scale;
    }
}

TEST(ViewPainter, LeavesOutWhatCannotBeSeen) {
    SmallScene scene;
    scene.view.layer().setShadowOpacity(1);
    EXPECT_EQ(scene.pixel(51, 30), whitePixel) << "a view that draws nothing casts no shadow";
    scene.view.layer().setShadowOpacity(0);
    UIView inside({-5, -5, 50, 50});
    inside.setBackgroundColor(red);
    scene.view.addSubview(inside);
    EXPECT_EQ(scene.pixel(7, 30), redPixel);
    scene.view.setClipsToBounds(true);
    EXPECT_EQ(scene.pixel(7, 30), whitePixel);
    EXPECT_EQ(scene.pixel(30, 30), redPixel);
    scene.view.setAlpha(0);
    EXPECT_EQ(scene.pixel(30, 30), whitePixel);
    scene.view.setAlpha(1);
    scene.view.setTransform(CGAffineTransform::scale(0, 0));
    EXPECT_EQ(scene.pixel(30, 30), whitePixel);
}

TEST(ViewPainter, ShowsTheMomentOfAnAnimation) {
    SmallScene scene;
    scene.view.setFrame({0, 0, 20, 60});
    scene.view.setBackgroundColor(red);
    UIView::animate(1, [&] { scene.view.setFrame({40, 0, 20, 60}); });
    scene.environment.loop.advance(0.5);
    EXPECT_EQ(scene.pixel(18, 30), whitePixel);
    EXPECT_EQ(scene.pixel(30, 30), redPixel);
    EXPECT_EQ(scene.pixel(42, 30), whitePixel);
}

TEST(ViewPainter, FillsAStencilWithTheTint) {
    SmallScene scene;
    UIImageView image({0, 0, 40, 40});
    std::vector<std::uint8_t> bytes{0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255};
    image.setImage(
        UIImage::fromPixels({2, 2, bytes}).withRenderingMode(UIImage::RenderingMode::alwaysTemplate));
    image.setTintColor(red);
    scene.view.addSubview(image);
    EXPECT_EQ(scene.pixel(14, 14), redPixel);
    EXPECT_EQ(scene.pixel(46, 14), whitePixel);
    EXPECT_EQ(scene.pixel(46, 46), redPixel);
}

TEST(ViewPainter, MirrorsWhatFollowsReading) {
    const OffscreenEnvironment environment;
    ViewPainter painter(environment.measurer);
    UIWindow window({200, 40});
    UIImageView arrow({0, 0, 40, 40});
    arrow.setImage(UIImage::named("Disclosure")->imageFlippedForRightToLeftLayoutDirection());
    UILabel label({40, 0, 160, 40});
    label.setText("Trips");
    window.addSubview(arrow);
    window.addSubview(label);
    const QRect arrowArea(0, 0, 40, 40), leftHalf(40, 0, 80, 40), rightHalf(120, 0, 80, 40);
    const QImage leftToRight = Snapshot::picture(window, painter, 1);
    const QImage arrowShown = leftToRight.copy(arrowArea), nothing = leftToRight.copy(rightHalf);
    EXPECT_NE(leftToRight.copy(leftHalf), nothing);
    EXPECT_NE(arrowShown, arrowShown.mirrored(true, false));
    const RightToLeft fromRight;
    const QImage rightToLeft = Snapshot::picture(window, painter, 1);
    EXPECT_EQ(rightToLeft.copy(leftHalf), nothing);
    EXPECT_NE(rightToLeft.copy(rightHalf), nothing);
    EXPECT_EQ(rightToLeft.copy(arrowArea), arrowShown.mirrored(true, false));
}

} // namespace sela
