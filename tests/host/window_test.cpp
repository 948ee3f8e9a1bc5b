#include "host/ProbeWindow.h"

#include <gmock/gmock.h>

#include <QClipboard>
#include <QMimeData>

namespace sela {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ShareWindowTest = ProbeWindowTest;

} // namespace

TEST_F(ShareWindowTest, IsAsLargeAsTheScreenAskedForAndTellsWhenItIsClosed) {
    EXPECT_EQ(shareWindow_.size(), QSize(750, 1334));
    shareWindow_.resize(800, 1400);
    QTest::qWait(1);
    EXPECT_EQ(window_.bounds(), CGRect(0, 0, 400, 700));
    int closed = 0;
    shareWindow_.setCloseHandler([&] { ++closed; });
    shareWindow_.close();
    EXPECT_EQ(closed, 1);
}

TEST_F(ProbeTest, ADialogIsTheCardAndDimsNothingAndGrows) {
    probe_->view().setBackgroundColor(UIColor::black().withAlpha(0.5));
    const CardPlacement placement{CardPlacement::Style::dialog, {375, 667}, {320, 390}};
    ShareWindow dialog(window_, painter_, CommandLine(), placement);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    EXPECT_EQ(dialog.size(), QSize(320, 390));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return dialog.screen()->grabWindow(dialog.winId()).toImage().pixelColor(10, 195) == Qt::white;
    }));
    int resizes = 0;
    dialog.setResizeHandler([&] { ++resizes; });
    for (const double height : {500, 400})
        dialog.growTo(height);
    EXPECT_TRUE(QTest::qWaitFor([&] { return resizes > 0; }));
    EXPECT_EQ(dialog.size(), QSize(320, 500));
    EXPECT_EQ(resizes, 1);
}

TEST_F(ShareWindowTest, TurnsClicksIntoTouchesAndTakesThemBackWithTheFocus) {
    QTest::mouseClick(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
    QTest::mouseClick(&shareWindow_, Qt::RightButton, {}, QPoint(140, 80));
    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    QTest::mouseMove(&shareWindow_, QPoint(600, 600));
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, QPoint(600, 600));
    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    QFocusEvent focusOut(QEvent::FocusOut);
    QCoreApplication::sendEvent(&shareWindow_, &focusOut);
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    EXPECT_FALSE(probe_->addButton.isHighlighted());
    EXPECT_THAT(probe_->touched, ElementsAre("addButton"));
}

TEST_F(ShareWindowTest, FollowsTheFirstFinger) {
    const std::unique_ptr<QPointingDevice> device(QTest::createTouchDevice());
    QPointingDevice* const screen = device.get();
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
    const auto turnWheel = [&](int angle) {
        QWheelEvent event(place, shareWindow_.mapToGlobal(place), QPoint(), QPoint(0, angle), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&shareWindow_, &event);
    };
    turnWheel(-120);
    EXPECT_DOUBLE_EQ(probe_->tableView.contentOffset().y, 48);
    turnWheel(240);
    EXPECT_DOUBLE_EQ(probe_->tableView.contentOffset().y, 0);

    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, place);
    for (int step = 1; step <= 10; ++step)
        QTest::mouseMove(&shareWindow_, place - QPoint(0, 20 * step));
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, place - QPoint(0, 200));
    EXPECT_GT(probe_->tableView.contentOffset().y, 60);
    EXPECT_THAT(probe_->touched, IsEmpty());
}

TEST_F(ShareWindowTest, WorksTheControlsByKeys) {
    const auto press = [&](std::initializer_list<Qt::Key> keys) {
        probe_->touched.clear();
        for (const Qt::Key key : keys)
            QTest::keyClick(&shareWindow_, key);
        return probe_->touched;
    };
    // Nothing has the focus: a key does what its button does, and Space nothing.
    EXPECT_THAT(press({Qt::Key_Space, Qt::Key_7, Qt::Key_8, Qt::Key_Return, Qt::Key_Escape}),
                ElementsAre("button7", "addButton", "cancelButton"));
    // In reading order, without what is hidden or covered, and around.
    EXPECT_THAT(press({Qt::Key_Tab, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Return, Qt::Key_Tab, Qt::Key_Space}),
                ElementsAre("addButton", "cancelButton", "button7"));
    EXPECT_THAT(press({Qt::Key_Tab, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Space}),
                ElementsAre("row 0 0", "showChild 0", "addButton"));
    EXPECT_THAT(press({Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Space}), ElementsAre("row 0 0"));
    // A table scrolls with its focus, across sections and to its ends.
    EXPECT_THAT(press({Qt::Key_Down, Qt::Key_Return, Qt::Key_End, Qt::Key_Return, Qt::Key_Up, Qt::Key_Space,
                       Qt::Key_PageUp, Qt::Key_Space, Qt::Key_Home, Qt::Key_Up, Qt::Key_Return}),
                ElementsAre("row 0 1", "row 2 39", "row 2 38", "row 2 29", "row 0 0"));
    // Arrows go by place elsewhere.
    EXPECT_THAT(press({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Right, Qt::Key_Space, Qt::Key_Left, Qt::Key_Down,
                       Qt::Key_Space}),
                ElementsAre("cancelButton", "button7"));
}

TEST_F(ShareWindowTest, KeepsDigitsThatAreTypedWhileScreensMove) {
    probe_->button7.setHidden(true);
    UIView::animate(
        1, [&] { probe_->cover.setAlpha(0); }, [&](bool) { probe_->button7.setHidden(false); });
    for (int time = 0; time < 2; ++time)
        QTest::keyClick(&shareWindow_, Qt::Key_7);
    // When nothing moves any more, and the transition has yet to be told of its end.
    environment_.loop.asyncAfter(1, [&] { QTest::keyClick(&shareWindow_, Qt::Key_7); });
    EXPECT_THAT(probe_->touched, IsEmpty());
    environment_.loop.advance(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return probe_->touched.size() == 3; }));
    EXPECT_THAT(probe_->touched, ElementsAre("button7", "button7", "button7"));
}

TEST_F(ShareWindowTest, ShowsWhatTheMouseCouldPress) {
    const auto becomes = [&](QRgb color) { return QTest::qWaitFor([&] { return pixel(60, 60) == color; }); };
    const auto changesFrom = [&](QRgb color) {
        return QTest::qWaitFor([&] { return pixel(60, 60) != color; });
    };
    const QRgb before = pixel(60, 60);
    QTest::mouseMove(&shareWindow_, QPoint(140, 80));
    EXPECT_TRUE(changesFrom(before));
    const QRgb pointed = pixel(60, 60);
    EXPECT_EQ(shareWindow_.cursor().shape(), Qt::PointingHandCursor);
    QTest::mousePress(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    EXPECT_TRUE(changesFrom(pointed));
    QTest::mouseRelease(&shareWindow_, Qt::LeftButton, {}, QPoint(140, 80));
    QTest::mouseMove(&shareWindow_, QPoint(600, 300));
    EXPECT_TRUE(becomes(before));
    EXPECT_NE(shareWindow_.cursor().shape(), Qt::PointingHandCursor);
    // A window that opens under the mouse, which does not move.
    QEnterEvent enter({140, 80}, {140, 80}, {140, 80});
    QCoreApplication::sendEvent(&shareWindow_, &enter);
    EXPECT_TRUE(becomes(pointed));
}

TEST_F(ShareWindowTest, ShowsTheWholeOfWhatIsCutOffUnderTheMouseOrTheFocus) {
    const auto shows = [&](const std::string& text) {
        return QTest::qWaitFor([&] {
            const UIView* const panel = window_.viewNamed("tip");
            return text ==
                   (panel ? std::get<TextContent>(panel->subviews().front()->content()).text.string() : "");
        });
    };
    const std::string title = "a name that is longer than its button";
    probe_->addButton.setTitle(title);
    EXPECT_TRUE(shows(""));
    QTest::mouseMove(&shareWindow_, QPoint(140, 80));
    EXPECT_TRUE(shows(title));
    QTest::mouseMove(&shareWindow_, QPoint(600, 80));
    EXPECT_TRUE(shows(""));
    QTest::keyClick(&shareWindow_, Qt::Key_Tab);
    QTest::mouseMove(&shareWindow_, QPoint(600, 1300));
    EXPECT_TRUE(shows(title));
}

TEST_F(ShareWindowTest, DrawsARingAroundTheFocusAndOnlyThere) {
    // The button takes (40, 40) to (240, 120); the ring lies around it.
    const auto colors = [&] { return std::vector{pixel(140, 80), pixel(140, 140)}; };
    const QRgb ground = pixel(34, 80);
    const std::vector<QRgb> before = colors();
    QTest::keyClick(&shareWindow_, Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([&] { return pixel(34, 80) != ground; }));
    EXPECT_EQ(colors(), before);
    probe_->addButton.setHidden(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return pixel(34, 80) == ground; }));
}

TEST_F(ShareWindowTest, TakesWhatIsPastedAndDroppedWhileItIsOpen) {
    bool isOpen = true;
    QStringList taken;
    shareWindow_.setContentHandler(
        {[&] { return isOpen; }, [&](const QMimeData* data) { taken += data->urls().value(0).fileName(); }});
    QMimeData files;
    files.setUrls({QUrl("file:///a.jpg")});
    QMimeData text;
    text.setText("file:///a.jpg");
    const auto drop = [&](const QMimeData& data) {
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({50, 50}, actions, &data, Qt::LeftButton, {});
        QDragMoveEvent move({60, 60}, actions, &data, Qt::LeftButton, {});
        QDropEvent event({60, 60}, actions, &data, Qt::LeftButton, {});
        int accepted = 0;
        for (QDropEvent* const step :
             {static_cast<QDropEvent*>(&enter), static_cast<QDropEvent*>(&move), &event}) {
            step->ignore();
            QCoreApplication::sendEvent(&shareWindow_, step);
            accepted += step->isAccepted() && step->dropAction() == Qt::CopyAction;
        }
        EXPECT_TRUE(accepted == 0 || accepted == 3) << accepted;
        return accepted == 3;
    };
    EXPECT_TRUE(drop(files));
    EXPECT_FALSE(drop(text));
    QGuiApplication::clipboard()->setMimeData(new QMimeData);
    QTest::keyClick(&shareWindow_, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(taken, QStringList({"a.jpg", ""}));
    isOpen = false;
    EXPECT_FALSE(drop(files));
    QTest::keyClick(&shareWindow_, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(taken.size(), 2);
}

} // namespace sela
