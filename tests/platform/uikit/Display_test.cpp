#include "platform/uikit/UILabel.h"
#include "platform/uikit/ViewTest.h"

namespace sela {
namespace {

class DisplayTest : public ViewTest {
protected:
    DisplayTest() {
        window.addSubview(view);
        view.addSubview(label);
        drawFrame();
    }

    /// The area that a frame would draw again.
    CGRect drawFrame() {
        window.prepareFrame();
        return window.takeDirtyRect();
    }

    UIView view{{100, 100, 80, 40}};
    UILabel label{{10, 10, 20, 10}};
};

TEST_F(DisplayTest, AChangeDrawsWhatItCoversAndNothingElse) {
    const struct {
        const char* what;
        std::function<void()> change;
        CGRect dirty;
    } cases[] = {
        {"nothing", [] {}, {}},
        {"a text", [&] { label.setText("x"); }, {110, 110, 20, 10}},
        {"the same text", [&] { label.setText("x"); }, {}},
        {"a background", [&] { view.setBackgroundColor(UIColor::black()); }, {100, 100, 80, 40}},
        {"a move, from and to", [&] { label.setFrame(CGRect(60, 10, 20, 10)); }, {110, 110, 70, 10}},
        {"hiding", [&] { label.setHidden(true); }, {160, 110, 20, 10}},
        {"a part outside",
         [&] {
             label.setHidden(false);
             label.setFrame({70, 0, 20, 10});
         },
         {160, 100, 30, 20}},
        {"clipping it", [&] { view.setClipsToBounds(true); }, {100, 100, 90, 40}},
        {"a part that is cut off", [&] { label.setText("y"); }, {170, 100, 10, 10}},
        {"a scaled view", [&] { view.setTransform(CGAffineTransform::scale(0.5, 0.5)); }, {100, 100, 80, 40}},
        {"in a scaled view", [&] { label.setText("z"); }, {155, 110, 5, 5}},
        {"a shadow",
         [&] {
             view.setClipsToBounds(false);
             label.setFrame({10, 10, 20, 10});
             view.setTransform({});
             drawFrame();
             view.layer().setShadowRadius(2);
             view.layer().setShadowOffset({0, 0});
             view.layer().setShadowOpacity(1);
         },
         {94, 94, 92, 52}},
        {"removal", [&] { label.removeFromSuperview(); }, {110, 110, 20, 10}},
        {"the appearance", [&] { window.setTraitCollection(UIUserInterfaceStyle::dark); }, {0, 0, 300, 400}},
    };
    for (const auto& [what, change, dirty] : cases) {
        change();
        EXPECT_EQ(window.needsFrame(), !dirty.isEmpty()) << what;
        EXPECT_EQ(drawFrame(), dirty) << what;
        EXPECT_FALSE(window.needsFrame()) << what;
    }
}

TEST_F(DisplayTest, AnAnimationDrawsWhereItWasAndIsUntilItHasArrived) {
    UIView::animate(1, [&] { view.setCenter({140, 320}); });
    drawFrame();
    loop.advance(0.5);
    EXPECT_TRUE(window.needsFrame());
    const CGRect half = drawFrame();
    EXPECT_EQ(half.minY(), 100);
    EXPECT_NEAR(half.maxY(), 240, 1e-6);
    loop.advance(0.5);
    EXPECT_TRUE(window.isIdle());
    EXPECT_TRUE(window.needsFrame()) << "the last step is not drawn yet";
    const CGRect rest = drawFrame();
    EXPECT_NEAR(rest.minY(), 200, 1e-6);
    EXPECT_EQ(rest.maxY(), 340);
    EXPECT_FALSE(window.needsFrame());
}

TEST_F(DisplayTest, WhoeverDrawsIsWokenOncePerFrame) {
    int calls = 0;
    window.setNeedsFrameHandler([&] { ++calls; });
    label.setText("x");
    label.setText("y");
    EXPECT_EQ(calls, 1);
    drawFrame();
    view.setNeedsLayout();
    EXPECT_EQ(calls, 2);
    drawFrame();
    // A view that starts from nothing covers nothing yet, but it will.
    view.setTransform(CGAffineTransform::scale(0, 0));
    drawFrame();
    calls = 0;
    UIView::animate(1, [&] { view.setTransform({}); });
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace sela
