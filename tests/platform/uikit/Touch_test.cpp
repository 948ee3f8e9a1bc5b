#include "platform/uikit/UIButton.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/ViewTest.h"

#include <gmock/gmock.h>

#include <memory>
#include <numbers>

namespace sela {
namespace {

using testing::ElementsAre;

using HitTest = ViewTest;

TEST_F(HitTest, FindsTheTopmostViewThatTakesTouches) {
    UIView below({50, 50, 100, 100});
    UIView above({100, 100, 100, 100});
    UIView inside({50, 50, 100, 100}); // reaches out of `above`
    window.addSubview(below);
    window.addSubview(above);
    above.addSubview(inside);
    const auto transformed = [&](const CGAffineTransform& transform) {
        return [&above, transform] { above.setTransform(transform); };
    };
    const struct {
        const char* what;
        std::function<void()> change;
        CGPoint point;
        UIView* hit;
    } cases[] = {
        {"only below", [] {}, {75, 75}, &below},
        {"where both lie", [] {}, {120, 120}, &above},
        {"the subview", [] {}, {175, 175}, &inside},
        {"the subview's part outside", [] {}, {225, 225}, &window},
        {"the right edge is outside", [] {}, {200, 120}, &window},
        {"hidden", [&] { above.setHidden(true); }, {175, 175}, &window},
        {"nearly transparent", [&] { above.setAlpha(0.009); }, {120, 120}, &below},
        {"barely visible", [&] { above.setAlpha(0.01); }, {120, 120}, &above},
        {"without interaction", [&] { above.setUserInteractionEnabled(false); }, {175, 175}, &window},
        {"in part", [&] { inside.setUserInteractionEnabled(false); }, {175, 175}, &above},
        {"scaled down", transformed(CGAffineTransform::scale(0.5, 0.5)), {120, 120}, &below},
        {"and inside it", transformed(CGAffineTransform::scale(0.5, 0.5)), {160, 160}, &inside},
        {"scaled to nothing", transformed(CGAffineTransform::scale(0, 0)), {150, 150}, &window},
        {"moved", transformed(CGAffineTransform::translation(-50, 0)), {60, 120}, &above},
        {"turned", transformed(CGAffineTransform::rotation(std::numbers::pi / 2)), {110, 190}, &inside},
        {"scrolled", [&] { above.setBounds(CGRect(0, 40, 100, 100)); }, {160, 115}, &inside},
    };
    for (const auto& [what, change, point, hit] : cases) {
        for (UIView* const view : {&below, &above, &inside}) {
            view->setHidden(false);
            view->setAlpha(1);
            view->setTransform({});
            view->setUserInteractionEnabled(true);
        }
        above.setBounds({0, 0, 100, 100});
        change();
        EXPECT_EQ(window.hitTest(point), hit) << what;
    }
}

class TouchTest : public ViewTest {
public:
    TouchTest() {
        container.setFrame({0, 0, 300, 400});
        window.addSubview(container);
        container.addSubview(button);
        button.addTarget(this, &TouchTest::onDown, UIControl::Event::touchDown);
        button.addTarget(this, &TouchTest::onInside, UIControl::Event::touchUpInside);
        button.addTarget(this, &TouchTest::onOutside, UIControl::Event::touchUpOutside);
        button.addTarget(this, &TouchTest::onCancel, UIControl::Event::touchCancel);
    }

    void onDown(UIButton&) { events.push_back("down"); }
    void onInside(UIButton& sender) { events.push_back("inside " + std::to_string(sender.tag())); }
    void onOutside(UIControl&) { events.push_back("outside"); }
    void onCancel(UIButton&) { events.push_back("cancel"); }
    void onDispose(UIButton&) {
        disposable.reset();
        events.push_back("disposed");
    }
    void onTap(UITapGestureRecognizer& recognizer) { events.push_back("tap " + recognizer.view()->name()); }

    UIView container{"container"};
    UIButton button{{100, 100, 50, 40}};
    std::unique_ptr<UIButton> disposable;
    std::vector<std::string> events;
};

TEST_F(TouchTest, AButtonFollowsTheFinger) {
    const std::function<void()> nothing = [] {};
    const struct {
        const char* what;
        std::function<void()> meanwhile; ///< after the finger went down in the button
        double upAt;
        std::vector<std::string> events;
    } cases[] = {
        {"a tap", nothing, 110, {"down", "inside 7"}},
        {"up within the slack of 70 points", nothing, 219, {"down", "inside 7"}},
        {"up beyond it", nothing, 221, {"down", "outside"}},
        {"away and back",
         [&] {
             window.touchMoved({290, 110});
         },
         110,
         {"down", "inside 7"}},
        {"taken away", [&] { window.touchCancelled(); }, 110, {"down", "cancel"}},
        {"the button leaves", [&] { button.removeFromSuperview(); }, 110, {"down", "cancel"}},
        {"its superview leaves", [&] { container.removeFromSuperview(); }, 110, {"down", "cancel"}},
        {"a second finger down",
         [&] {
             window.touchBegan({1, 1});
         },
         110,
         {"down", "cancel"}},
        {"disabled meanwhile", [&] { button.setEnabled(false); }, 110, {"down"}},
        {"flattened meanwhile",
         [&] { container.setTransform(CGAffineTransform::scale(0, 0)); },
         110,
         {"down", "outside"}},
    };
    button.setTag(7);
    for (const auto& each : cases) {
        window.addSubview(container);
        container.addSubview(button);
        container.setTransform({});
        button.setEnabled(true);
        events.clear();
        window.touchBegan({110, 110});
        each.meanwhile();
        window.touchEnded({each.upAt, 110});
        EXPECT_EQ(events, each.events) << each.what;
        EXPECT_FALSE(button.isHighlighted()) << each.what;
    }
}

TEST_F(TouchTest, APressedButtonFades) {
    button.setTitle("Add");
    window.touchBegan({110, 110});
    EXPECT_EQ(button.titleLabel().alpha(), 0.2);
    window.touchMoved({290, 390});
    EXPECT_EQ(button.titleLabel().alpha(), 1);
    window.touchMoved({110, 110});
    EXPECT_EQ(button.titleLabel().alpha(), 0.2);
}

TEST_F(TouchTest, ASmallControlTakesTheTouchesAroundIt) {
    UIButton small({20, 100, 110, 20});
    window.addSubview(small);
    EXPECT_EQ(window.hitTest({50, 89}), &small);
    EXPECT_EQ(window.hitTest({50, 131}), &small);
    EXPECT_NE(window.hitTest({50, 87}), &small);
    EXPECT_NE(window.hitTest({18, 110}), &small);
}

TEST_F(TouchTest, TheNearestRecogniserWinsAndAControlShieldsThoseAbove) {
    UIView inner("inner");
    inner.setFrame({0, 0, 50, 50});
    container.addSubview(inner);
    container.addGestureRecognizer(std::make_unique<UITapGestureRecognizer>(this, &TouchTest::onTap));
    tap({20, 20});
    EXPECT_THAT(events, ElementsAre("tap container"));
    UITapGestureRecognizer& nearest =
        inner.addGestureRecognizer(std::make_unique<UITapGestureRecognizer>(this, &TouchTest::onTap));
    tap({20, 20});
    EXPECT_EQ(events.back(), "tap inner");
    nearest.setEnabled(false);
    tap({20, 20});
    EXPECT_EQ(events.back(), "tap container");
    tap({110, 110});
    EXPECT_EQ(events.back(), "inside 0");
    button.setEnabled(false);
    tap({110, 110});
    EXPECT_EQ(events.size(), 5u) << "a disabled button let a tap through";
}

TEST_F(TouchTest, AFingerThatStraysByMoreThanTenPointsIsNoTap) {
    container.addGestureRecognizer(std::make_unique<UITapGestureRecognizer>(this, &TouchTest::onTap));
    window.touchBegan({20, 20});
    window.touchEnded({27, 28});
    window.touchBegan({20, 20});
    window.touchMoved({60, 20});
    window.touchEnded({20, 20});
    EXPECT_TRUE(events.empty());
    window.touchBegan({20, 20});
    window.touchEnded({26, 28});
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(TouchTest, AnActionMayDestroyItsControl) {
    disposable = std::make_unique<UIButton>(CGRect(0, 0, 300, 400));
    for (int i = 0; i < 2; ++i)
        disposable->addTarget(this, &TouchTest::onDispose, UIControl::Event::touchUpInside);
    window.addSubview(*disposable);
    tap({20, 20});
    EXPECT_EQ(disposable, nullptr);
    tap({20, 20});
    EXPECT_THAT(events, ElementsAre("disposed"));
}

TEST_F(TouchTest, ATapPointIsWhereAViewIsReallyReached) {
    UIView clipping({0, 0, 120, 400});
    clipping.setClipsToBounds(true);
    window.addSubview(clipping);
    clipping.addSubview(button);
    EXPECT_EQ(window.tapPoint(button), (CGPoint{110, 120}));
    button.setFrame({120, 100, 50, 40});
    EXPECT_EQ(window.tapPoint(button), std::nullopt);
}

} // namespace
} // namespace sela
