#include "unlock/SelaSharedAlbumPassCheck.h"

#include "unlock/UnlockTest.h"

#include <gmock/gmock.h>

namespace sela {
namespace {

class PassCheckTest : public UnlockTest {
protected:
    void open(const std::string& checkPass) {
        check_ = std::make_shared<SelaSharedAlbumPassCheck>(Secret(checkPass), "Trips");
        reports_.clear();
        check_->setCallback([this](std::optional<bool> result) {
            reports_ += !result ? "none " : *result ? "true " : "false ";
        });
        navigation_->pushViewController(check_, true);
        settle();
    }

    std::shared_ptr<SelaSharedAlbumPassCheck> check_;
    std::string reports_;
};

TEST_F(PassCheckTest, ASuccessLeavesTheDotsAsTheyWere) {
    publishPasscode("123456");
    open("2468");
    EXPECT_EQ(litDots(), 0);
    type("246");
    EXPECT_EQ(litDots(), 3);
    const UIView& fourth = view("indicator4");
    type("8");
    EXPECT_TRUE(fourth.isHidden());
    EXPECT_EQ(reports_, "true ") << "at once, not when the screen has slid away";
    EXPECT_FALSE(check_->callback());
}

TEST_F(PassCheckTest, OutsideANavigationControllerNothingEnds) {
    open("2");
    navigation_->popViewController(false);
    settle();
    UIView& screen = check_->view();
    check_->onKeyTouched(dynamic_cast<UIButton&>(*screen.viewNamed("button2")));
    check_->onBackButtonTouched(dynamic_cast<UIButton&>(*screen.viewNamed("backButton")));
    EXPECT_EQ(reports_, "");
    EXPECT_TRUE(check_->callback());
}

TEST_F(PassCheckTest, AScreenThatIsGoneDuringTheShakeIsLeftAlone) {
    open("24");
    type("23");
    const std::weak_ptr<SelaSharedAlbumPassCheck> gone = check_;
    check_.reset();
    EXPECT_TRUE(tap("backButton"));
    settle();
    ASSERT_TRUE(gone.expired());
    loop_.advance(1);
    EXPECT_EQ(reports_, "false ");
}

} // namespace
} // namespace sela
