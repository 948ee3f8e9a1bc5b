#include "support/LockedSettings.h"
#include "unlock/UnlockTest.h"

#include <gmock/gmock.h>

namespace sela {
namespace {

using testing::ElementsAre;

/// What the picker shows in its states.
const std::string launchMessage = "message Pick Album";
const std::string locked = "keypad Input Passcode";
const std::string albumTable = "table Pick Album";

class AlbumPickerTest : public UnlockTest {
protected:
    std::string shown() {
        EXPECT_EQ(isShown("keypadView"), isShown("indicatorContainer"));
        return std::string(isShown("keypadView") ? "keypad " : "") + (isShown("tableView") ? "table " : "") +
               (isShown("launchMainAppLabel") ? "message " : "") + label("titleLabel").text();
    }

    std::vector<std::string> sections() {
        std::vector<std::string> names;
        for (const SharedAlbum& parent : picker_->albums().parentAlbums())
            names.push_back(parent.namePath.front());
        return names;
    }
};

TEST_F(AlbumPickerTest, AWrongEntryShakesTheDotsAndIsGone) {
    publishAlbums({});
    publishPasscode("1234");
    openPicker();
    type("1243");
    EXPECT_EQ(litDots(), 4);
    UIView& dots = view("indicatorContainer");
    const CAKeyframeAnimation* const shake = dots.layer().animation("shake");
    ASSERT_TRUE(shake);
    EXPECT_EQ(shake->values, (std::vector<double>{-20, 20, -15, 15, -10, 10, -5, 5, 0}));
    loop_.advance(PasscodeKeypad::shakeDuration / 8);
    EXPECT_NEAR(dots.presentation().transform.tx, 20, 1e-6);
    EXPECT_TRUE(view("keypadView").presentation().transform.isIdentity());
    loop_.advance(PasscodeKeypad::shakeDuration * 7 / 8 - 0.01);
    type("1234");
    EXPECT_EQ(litDots(), 4);
    loop_.advance(0.02);
    EXPECT_EQ(litDots(), 0);
    EXPECT_FALSE(dots.layer().hasAnimations());
    EXPECT_EQ(shown(), locked);
    type("12");
    ASSERT_EQ(view("keypadView").keyCommands().front().input, UIKeyCommand::inputDelete);
    view("keypadView").keyCommands().front().action();
    EXPECT_EQ(litDots(), 0);
    type("1234");
    EXPECT_EQ(shown(), albumTable);
}

TEST_F(AlbumPickerTest, AVaultThatIsBusyIsWaitedForAndNothingIsLost) {
    const std::string busy = "The vault is busy. One moment, please.";
    publishAlbums({album({"A"})});
    publishPasscode("123456");
    const auto waitWhileBusy = [&](const std::function<void()>& begin) {
        {
            const LockedSettings settings;
            begin();
            loop_.advance(1);
            EXPECT_EQ(shown(), launchMessage);
            EXPECT_EQ(label("launchMainAppLabel").text(), busy);
        }
        loop_.advance(1);
        update();
    };
    waitWhileBusy([&] { openPicker(); });
    EXPECT_EQ(shown(), locked);
    EXPECT_EQ(view("indicatorContainer").subviews().size(), 6u);
    EXPECT_EQ(label("launchMainAppLabel").text(), "Please launch the main Sela app first.");
    type("123450");
    waitWhileBusy([] {});
    EXPECT_EQ(shown(), locked);
    type("12345");
    waitWhileBusy([&] { type("6"); });
    EXPECT_EQ(shown(), albumTable);
    EXPECT_THAT(sections(), ElementsAre("A"));
}

TEST_F(AlbumPickerTest, AReadThatFailsNeverOpensTheOtherSide) {
    struct FailingLock : DiskWrapper {
        explicit FailingLock(int number) : callsLeft(number) {}
        int refusal(const char* call) override {
            return std::string_view(call) == "lockBytes" && callsLeft-- == 0 ? -ENOLCK : 0;
        }
        int callsLeft;
    };
    publishAlbums({album({"vault"}), album({"decoy"}, true)});
    publishPasscode("1234");
    publishDecoyPasscode("0000");
    int number = -1;
    for (bool hasFailed = true; hasFailed;) {
        openPicker();
        type("000");
        {
            FailingLock disk(++number);
            type("0");
            hasFailed = disk.callsLeft < 0;
        }
        EXPECT_TRUE(shown() != albumTable || sections() == std::vector<std::string>{"decoy"}) << number;
        navigation_->popViewController(false);
    }
    EXPECT_GT(number, 3);
}

TEST_F(AlbumPickerTest, OfEqualPasscodesTheVaultsWins) {
    publishAlbums({album({"decoy"}, true), album({"vault"})});
    publishPasscode("1234");
    publishDecoyPasscode("1234");
    openPicker();
    type("1234");
    EXPECT_THAT(sections(), ElementsAre("vault"));
    EXPECT_TRUE(opener_->modes.empty());
}

TEST_F(AlbumPickerTest, APickerThatIsGoneDuringTheShakeIsLeftAlone) {
    publishAlbums({});
    publishPasscode("1");
    openPicker();
    type("2");
    const std::weak_ptr<SelaShareExtensionAlbumsVc> gone = picker_;
    navigation_->popViewController(false);
    picker_.reset();
    loop_.runPending();
    EXPECT_TRUE(gone.expired());
    loop_.advance(1);
}

TEST_F(AlbumPickerTest, ReadsTheAlbumsAfreshWhenItUnlocks) {
    publishAlbums({album({"A"})});
    publishPasscode("1");
    openPicker();
    publishAlbums({album({"B"})});
    type("1");
    EXPECT_THAT(sections(), ElementsAre("B"));

    openPicker();
    publishCatalogue("broken");
    type("1");
    EXPECT_EQ(shown(), launchMessage);
    EXPECT_THAT(sections(), ElementsAre());
}

} // namespace
} // namespace sela
