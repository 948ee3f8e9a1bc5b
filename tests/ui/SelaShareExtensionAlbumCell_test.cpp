#include "ui/SelaShareExtensionAlbumCell.h"

#include "platform/foundation/NSLog.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"
#include "platform/uikit/UIWindow.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace sela {
namespace {

using Cell = SelaShareExtensionAlbumCell;

class AlbumCellTest : public testing::TestWithParam<double> {
protected:
    AlbumCellTest() {
        window_.addSubview(cell_);
        cell_.setFrame({0, 0, GetParam(), Cell::rowHeight});
        window_.prepareFrame();
    }

    void TearDown() override {
        // Only the arrow's two widths contradict each other, and that is told once in a process.
        EXPECT_THAT(logged_, testing::Each(testing::HasSubstr("the width of UIImageView imageView")));
    }

    void expectFrames(double thumbnailLeft, double titleRight) {
        window_.prepareFrame();
        EXPECT_EQ(cell_.thumbnailView().frame(), CGRect(thumbnailLeft, 7.5, 40, 40));
        EXPECT_EQ(cell_.lockIcon().frame(), cell_.thumbnailView().frame());
        const double titleLeft = thumbnailLeft + 40 + 24;
        EXPECT_EQ(cell_.titleLabel().frame(), CGRect(titleLeft, 0, titleRight - titleLeft, 55));
        EXPECT_EQ(cell_.showChildButton().frame(), CGRect(GetParam() - 55, 0, 55, 55));
    }

    VirtualMainLoop loop_;
    ScopedMainQueue mainQueue_{loop_};
    std::vector<std::string> logged_;
    LogRedirection log_{[this](const std::string& line) { logged_.push_back(line); }};
    UIWindow window_{CGSize{400, 480}};
    Cell cell_{Cell::Style::normal, "cell"};
};

TEST_P(AlbumCellTest, LaysOutParentsAndChildrenWithAndWithoutTheirControl) {
    const double width = GetParam();
    EXPECT_EQ(cell_.contentView().frame(), CGRect(0, 0, width, 55));
    expectFrames(30, width - 55);
    cell_.layoutTitleWithoutShowChildButton();
    expectFrames(30, width);
    cell_.layoutThumbnailOfChild();
    expectFrames(48, width);
    cell_.layoutTitleWithShowChildButton();
    expectFrames(48, width - 55);
    cell_.layoutThumbnailOfParent();
    expectFrames(30, width - 55);
}

TEST_P(AlbumCellTest, DrawsTheArrowTwentyHighInTheMiddleOfItsControl) {
    const UIImageView& arrow = cell_.showChildButton().imageView();
    EXPECT_FALSE(arrow.isHidden());
    EXPECT_TRUE(arrow.drawsTemplate());
    EXPECT_EQ(arrow.image()->assetName(), "arrow_down_circle");
    EXPECT_EQ(arrow.frame(), CGRect(17.5, 17.5, 20, 20));
    EXPECT_EQ(arrow.tintColor(), UIColor::named("AppTint"));
}

INSTANTIATE_TEST_SUITE_P(Widths, AlbumCellTest, testing::Values(320.0, 375.0));

class AlbumCellOnAPhone : public AlbumCellTest {};

TEST_P(AlbumCellOnAPhone, TakesTapsOverTheWholeRowsHeightAlsoWithoutTheImage) {
    int taps = 0;
    cell_.showChildButton().setCallback([&](AUIButton&) { ++taps; });
    cell_.showChildButton().imageView().setHidden(true);
    for (const CGPoint point : {CGPoint{266, 0}, CGPoint{266, 54}, CGPoint{319, 27}}) {
        window_.touchBegan(point);
        window_.touchEnded(point);
    }
    window_.touchBegan({264, 27});
    window_.touchEnded({264, 27});
    EXPECT_EQ(taps, 3);
}

TEST_P(AlbumCellOnAPhone, PutsTheBadgeAboveTheThumbnail) {
    const auto& views = cell_.contentView().subviews();
    ASSERT_GE(views.size(), 4u);
    EXPECT_EQ(std::vector<UIView*>(views.begin(), views.begin() + 4),
              (std::vector<UIView*>{&cell_.thumbnailView(), &cell_.titleLabel(), &cell_.showChildButton(),
                                    &cell_.lockIcon()}));
    EXPECT_EQ(cell_.lockIcon().image()->assetName(), "AlbumLocked");
}

TEST_P(AlbumCellOnAPhone, HasItsLooks) {
    EXPECT_EQ(cell_.titleLabel().font(), UIFont::systemFont(14));
    EXPECT_EQ(cell_.titleLabel().textColor(), UIColor::named("AppText"));
    EXPECT_EQ(cell_.contentView().backgroundColor(), UIColor::named("AppCard"));
    for (const UIImageView* square : {&cell_.thumbnailView(), &cell_.lockIcon()}) {
        EXPECT_EQ(square->contentMode(), UIView::ContentMode::scaleAspectFill);
        EXPECT_EQ(square->layer().cornerRadius(), 3);
        EXPECT_TRUE(square->clipsToBounds());
    }
}

TEST_P(AlbumCellOnAPhone, FromAnArchiveItIsEmpty) {
    Cell cell{NSCoder{}};
    EXPECT_EQ(cell.thumbnailView().superview(), nullptr);
    EXPECT_EQ(cell.lockIcon().superview(), nullptr);
    EXPECT_EQ(cell.lockIcon().image()->assetName(), "AlbumLocked");
}

INSTANTIATE_TEST_SUITE_P(Widths, AlbumCellOnAPhone, testing::Values(320.0));

} // namespace
} // namespace sela
