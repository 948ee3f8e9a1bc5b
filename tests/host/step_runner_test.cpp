#include "host/ProbeWindow.h"
#include "host/StepRunner.h"
#include "platform/foundation/HeadlessMainLoop.h"
#include "support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace sela {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StepRunnerTest : public ProbeTest {
protected:
    /// Runs the steps for `seconds` of the clock.
    void start(const std::vector<Step>& steps, double seconds) {
        runner_ = std::make_unique<StepRunner>(
            StepRunner::Screen{window_, painter_, 1, queue_, [this] { return contentShown_; }}, steps);
        runner_->start([this](const std::optional<std::string>& failure) {
            ended_ = true;
            failure_ = failure;
        });
        environment_.loop.advance(seconds);
    }

    ObservedMainQueue queue_{environment_.loop};
    ScopedMainQueue observed_{queue_};
    bool contentShown_ = true;
    std::unique_ptr<StepRunner> runner_;
    bool ended_ = false;
    std::optional<std::string> failure_;
};

Step tap(const char* name) {
    return {Step::Kind::tap, name};
}
Step tapNow(const char* name) {
    return {Step::Kind::tapNow, name};
}

} // namespace

TEST_F(StepRunnerTest, TapsTheTopmostViewThatANameStandsForAndWaitsForNoContentThatNothingBrings) {
    contentShown_ = false;
    UIButton behind({0, 0, 20, 20});
    behind.setName("addButton");
    probe_->view().insertSubview(behind, 0);
    start({tap("addButton"),
           tap("row:0:1"),
           tap("row:2:39"),
           tap("showChildButton:1"),
           tap("row:0:0"),
           {Step::Kind::type, "77"}},
          10);
    EXPECT_EQ(failure_, std::nullopt);
    EXPECT_TRUE(ended_);
    EXPECT_THAT(probe_->touched, ElementsAre("addButton", "row 0 1", "row 2 39", "showChild 1", "row 0 0",
                                             "button7", "button7"));
}

TEST_F(StepRunnerTest, FailsOnWhatCannotBeTouched) {
    for (const char* const name : {"nothing", "", "hiddenButton", "coveredButton", "row:0:40", "row:3:0",
                                   "row:0", "row:-1:0", "row:0:x", "showChildButton:3", "row:0:0:0"}) {
        start({tap(name), tap("addButton")}, 1);
        EXPECT_TRUE(ended_) << name;
        EXPECT_EQ(failure_, std::string(name) + " is not on the screen, or is hidden or covered");
    }
    EXPECT_THAT(probe_->touched, IsEmpty());
    // The digit may be one of a passcode.
    start({{Step::Kind::type, "5"}}, 1);
    ASSERT_TRUE(failure_);
    EXPECT_EQ(failure_->find('5'), std::string::npos);
}

/// On a loop in real time, since the clock of the others never lets work be under way.
TEST_F(StepRunnerTest, WaitsForContentThatIsUnderWay) {
    HeadlessMainLoop loop;
    ObservedMainQueue queue(loop);
    const ScopedMainQueue scoped(queue);
    StepRunner runner({window_, painter_, 1, queue, [this] { return contentShown_; }}, {tap("addButton")});
    contentShown_ = false;
    DispatchQueue::global().async([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        DispatchQueue::main().async([this] {
            EXPECT_THAT(probe_->touched, IsEmpty());
            contentShown_ = true;
        });
    });
    runner.start([](const std::optional<std::string>& failure) { EXPECT_EQ(failure, std::nullopt); });
    loop.run();
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
}

TEST_F(StepRunnerTest, TapsAtOnceWhenToldTo) {
    queue_.asyncAfter(60, [] {});
    const Step wait{Step::Kind::wait, "", 0.25};
    start({tapNow("addButton"), wait, wait, {Step::Kind::type, "77"}, tap("addButton")}, 0.49);
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
    environment_.loop.advance(0.02);
    EXPECT_THAT(probe_->touched, ElementsAre("addButton", "button7", "button7"));
    environment_.loop.advance(58);
    EXPECT_EQ(probe_->touched.size(), 3u);
    environment_.loop.advance(2);
    EXPECT_EQ(probe_->touched.back(), "addButton");
}

TEST_F(StepRunnerTest, StopsWhenTheRequestEndsAfterItsPictures) {
    const TemporaryHome home;
    const std::string tree = home.path() / "tree.json";
    queue_.asyncAfter(60, [] {});
    start({tapNow("addButton"), {Step::Kind::tree, tree}, tap("button7")}, 1);
    EXPECT_FALSE(std::filesystem::exists(tree));
    runner_->requestEnded();
    EXPECT_TRUE(ended_);
    EXPECT_TRUE(std::filesystem::exists(tree));
    environment_.loop.advance(100);
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
}

} // namespace sela
