#include "host/OffscreenEnvironment.h"
#include "host/ProbeController.h"
#include "host/ShareWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>

namespace sela {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A probe screen shown on Qt's platform without a display, where real events of the window system arrive.
class ShareWindowTest : public testing::Test {
protected:
    void SetUp() override {
        window_.setRootViewController(probe_);
        shareWindow_.open();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&shareWindow_));
        window_.prepareFrame();
    }

    static CommandLine commandLine() {
        CommandLine line;
        line.screenWidth = 375;
        line.screenHeight = 667;
        line.scale = 2;
        line.hasScale = true;
        return line;
    }

    void turnWheel(QPoint place, int angle) {
        QWheelEvent event(place, shareWindow_.mapToGlobal(place), QPoint(), QPoint(0, angle), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&shareWindow_, &event);
    }

    OffscreenEnvironment environment_;
    ViewPainter painter_{environment_.measurer};
    std::shared_ptr<ProbeController> probe_ = std::make_shared<ProbeController>();
    UIWindow window_{ShareWindow::screenSize(commandLine())};
    ShareWindow shareWindow_{window_, painter_, commandLine()};
};

} // namespace

TEST_F(ShareWindowTest, IsAsLargeAsTheScreenAskedFor) {
    EXPECT_EQ(shareWindow_.size(), QSize(750, 1334));
    EXPECT_EQ(window_.bounds(), CGRect(0, 0, 375, 667));
    shareWindow_.resize(800, 1400);
    QTest::qWait(1);
    EXPECT_EQ(window_.bounds(), CGRect(0, 0, 400, 700));
}

TEST_F(ShareWindowTest, TurnsClicksIntoTouches) {
    QTest::mouseClick(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
    QTest::mouseClick(&shareWindow_, Qt::RightButton, {}, QPoint(140, 80));
    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    QTest::mouseMove(&shareWindow_, QPoint(600, 600));
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, QPoint(600, 600));
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
}

TEST_F(ShareWindowTest, FollowsTheFirstFinger) {
    QPointingDevice* const screen = QTest::createTouchDevice();
    QTest::touchEvent(&shareWindow_, screen).press(1, QPoint(140, 80));
    EXPECT_TRUE(probe_->addButton.isHighlighted());
    QTest::touchEvent(&shareWindow_, screen).stationary(1).press(2, QPoint(80, 320));
    QTest::touchEvent(&shareWindow_, screen).stationary(1).release(2, QPoint(80, 320));
    EXPECT_THAT(probe_->touched, IsEmpty());
    QTest::touchEvent(&shareWindow_, screen).release(1, QPoint(142, 82));
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
    QTest::touchEvent(&shareWindow_, screen).press(3, QPoint(80, 320));
    QTest::touchEvent(&shareWindow_, screen).release(3, QPoint(80, 320));
    EXPECT_THAT(probe_->touched, ElementsAre("addButton", "button7"));
}

TEST_F(ShareWindowTest, ScrollsByWheelAndByFinger) {
    const QPoint place(300, 800);
    turnWheel(place, -120);
    EXPECT_DOUBLE_EQ(probe_->tableView.contentOffset().y, 48);
    turnWheel(place, 240);
    EXPECT_DOUBLE_EQ(probe_->tableView.contentOffset().y, 0);

    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, place);
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(&shareWindow_, place - QPoint(0, 20 * step));
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, place - QPoint(0, 200));
    EXPECT_GT(probe_->tableView.contentOffset().y, 60);
    EXPECT_THAT(probe_->touched, IsEmpty());
}

TEST_F(ShareWindowTest, TakesThePressBackWhenTheWindowLosesTheFocus) {
    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    QFocusEvent focusOut(QEvent::FocusOut);
    QCoreApplication::sendEvent(&shareWindow_, &focusOut);
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    EXPECT_THAT(probe_->touched, IsEmpty());
    EXPECT_FALSE(probe_->addButton.isHighlighted());
}

TEST_F(ShareWindowTest, ShowsChangesAndThenRests) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window_.needsFrame(); }));
    probe_->addButton.setAlpha(0.5);
    EXPECT_TRUE(window_.needsFrame());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window_.needsFrame(); })) << "the change was never drawn";
}

TEST_F(ShareWindowTest, TellsWhenItIsClosed) {
    int closed = 0;
    shareWindow_.setCloseHandler([&] { ++closed; });
    QTest::keyClick(&shareWindow_, Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
}

} // namespace sela
