#include "host/OffscreenEnvironment.h"
#include "host/Snapshot.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <numbers>
#include <tuple>
#include <vector>

namespace sela {

namespace {

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

/// Whether two colours differ by no more than processors do that blend them.
bool areAlike(const QColor& left, const QColor& right) {
    return std::abs(left.red() - right.red()) <= 1 && std::abs(left.green() - right.green()) <= 1 &&
           std::abs(left.blue() - right.blue()) <= 1;
}

} // namespace

TEST(ViewPainter, DrawsNoEdgeBetweenPixels) {
    SmallScene scene;
    scene.view.setFrame({10.5, 10.5, 20, 20});
    scene.view.setBackgroundColor(red);
    for (const double radius : {0.0, 4.0}) {
        scene.view.layer().setCornerRadius(radius);
        EXPECT_EQ(scene.pixel(10, 20), whitePixel) << radius;
        EXPECT_EQ(scene.pixel(11, 20), redPixel) << radius;
    }
}

TEST(ViewPainter, DrawsWhatTheLayerSays) {
    SmallScene scene;
    UIView inside({-5, -5, 50, 50});
    inside.setBackgroundColor(red);
    scene.view.addSubview(inside);
    CALayer& layer = scene.view.layer();
    const QColor pink(255, 128, 128);
    const struct {
        const char* what;
        std::function<void()> change;
        std::vector<std::tuple<double, double, QColor>> pixels;
    } steps[] = {
        {"what reaches out", [] {}, {{7, 30, redPixel}, {30, 30, redPixel}, {3, 30, whitePixel}}},
        {"clipped", [&] { scene.view.setClipsToBounds(true); }, {{7, 30, whitePixel}, {30, 30, redPixel}}},
        {"rounded", [&] { layer.setCornerRadius(20); }, {{13, 13, whitePixel}, {11, 30, redPixel}}},
        {"with a border",
         [&] {
             layer.setBorderWidth(4);
             layer.setBorderColor(UIColor::black());
         },
         {{12, 30, Qt::black}, {15, 30, redPixel}}},
        {"turned",
         [&] {
             layer.setCornerRadius(0);
             layer.setBorderWidth(0);
             scene.view.setTransform(CGAffineTransform::rotation(std::numbers::pi / 4));
         },
         {{12, 12, whitePixel}, {4, 30, redPixel}}},
        {"with one alpha for all that is in it",
         [&] {
             scene.view.setTransform({});
             scene.view.setBackgroundColor(UIColor::black());
             scene.view.setAlpha(0.5);
         },
         {{30, 30, pink}}},
        {"gone", [&] { scene.view.setAlpha(0); }, {{30, 30, whitePixel}}},
        {"flat",
         [&] {
             scene.view.setAlpha(1);
             scene.view.setTransform(CGAffineTransform::scale(0, 0));
         },
         {{30, 30, whitePixel}}},
    };
    for (const auto& [what, change, pixels] : steps) {
        change();
        for (const auto& [x, y, color] : pixels)
            EXPECT_PRED2(areAlike, scene.pixel(x, y), color) << what << " at " << x << ", " << y;
    }
}

TEST(ViewPainter, AShadowFadesWithTheDistanceFromWhatIsDrawn) {
    SmallScene scene;
    scene.view.layer().setShadowOpacity(1);
    scene.view.layer().setShadowOffset({0, 3});
    scene.view.layer().setShadowRadius(2);
    EXPECT_EQ(scene.pixel(30, 52), whitePixel) << "a view that draws nothing casts no shadow";
    scene.view.setBackgroundColor(red);
    const auto below = [&](double y) { return scene.pixel(30, y).lightness(); };
    EXPECT_LT(below(50), below(53));
    EXPECT_LT(below(53), below(56));
    EXPECT_LT(below(56), 255);
    EXPECT_EQ(scene.pixel(30, 5), whitePixel);
    EXPECT_EQ(scene.pixel(30, 30), redPixel);
}

/// What an opaque view covers is not drawn, and nothing more.
TEST(ViewPainter, DrawsWhatIsSeenAroundAndThroughAViewAbove) {
    SmallScene scene;
    scene.view.setFrame({0, 0, 60, 60});
    scene.view.setBackgroundColor(red);
    UIView above({-10, -10, 80, 80}), inside({0, 0, 80, 80});
    scene.controller->view().addSubview(above);
    above.addSubview(inside);
    const QColor green(0, 255, 0), mixed(128, 127, 0);
    const struct {
        const char* what;
        std::function<void()> change;
        QColor middle, corner;
    } steps[] = {
        {"nothing", [] {}, redPixel, redPixel},
        {"all", [&] { inside.setBackgroundColor(UIColor(0, 1, 0, 1)); }, green, green},
        {"no rounded corners", [&] { inside.layer().setCornerRadius(40); }, green, redPixel},
        {"none that are cut off",
         [&] {
             inside.layer().setCornerRadius(0);
             above.layer().setCornerRadius(40);
             above.setClipsToBounds(true);
         },
         green, redPixel},
        {"less where it shrinks",
         [&] {
             above.layer().setCornerRadius(0);
             above.setTransform(CGAffineTransform::scale(0.5, 0.5));
         },
         green, redPixel},
        {"nothing where it fades",
         [&] {
             above.setTransform({});
             inside.setAlpha(0.5);
         },
         mixed, mixed},
    };
    for (const auto& [what, change, middle, corner] : steps) {
        change();
        EXPECT_EQ(scene.pixel(30, 30).name(), middle.name()) << what;
        EXPECT_EQ(scene.pixel(0, 0).name(), corner.name()) << what;
    }
}

/// Changed areas are drawn piece by piece, so pieces must add up to the whole, and draw nothing around them.
TEST(ViewPainter, DrawsPiecesThatAddUpToTheWhole) {
    SmallScene scene;
    scene.view.setBackgroundColor(red);
    scene.view.layer().setCornerRadius(8);
    scene.view.layer().setShadowOpacity(1);
    scene.view.setTransform(CGAffineTransform::rotation(0.3));
    scene.view.setAlpha(0.8);
    UILabel label({0, 0, 40, 40});
    label.setText("Sela");
    scene.view.addSubview(label);
    for (const double scale : {1.0, 1.5}) {
        const QImage whole = Snapshot::picture(scene.window, scene.painter, scale);
        QImage pieces(whole.size(), whole.format());
        pieces.fill(Snapshot::backdrop(UIUserInterfaceStyle::light));
        for (int y = 0; y < whole.height(); y += 17)
            for (int x = 0; x < whole.width(); x += 13)
                scene.painter.paint(pieces, QRect(x, y, 13, 17), scene.window, {scale, {}});
        for (int y = 0; y < whole.height(); ++y)
            for (int x = 0; x < whole.width(); ++x) {
                const QColor one = whole.pixelColor(x, y), other = pieces.pixelColor(x, y);
                ASSERT_NEAR(one.red(), other.red(), 2) << x << ", " << y << " at " << scale;
                ASSERT_NEAR(one.green(), other.green(), 2) << x << ", " << y << " at " << scale;
            }
    }
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

} // namespace sela
