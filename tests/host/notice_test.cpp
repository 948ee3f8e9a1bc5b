#include "host/Notice.h"
#include "host/ProbeWindow.h"

namespace sela {

TEST_F(ProbeTest, ANoticeHidesNoButtonAndNoTextThatItNeedNotHide) {
    UILabel text;
    text.setText("Done");
    probe_->view().addSubview(text);
    for (UIView* const view : std::initializer_list<UIView*>{&probe_->tableView, &probe_->coveredButton})
        view->setHidden(true);
    const struct {
        const char* what;
        CGRect text, add, cancel;
        double top;    ///< of the panel, which is 94 points high
        double height; ///< that the window would need to show the text as well
    } cases[] = {
        {"nothing is there", {}, {}, {}, 557, 667},
        {"a text", {20, 600, 300, 20}, {}, {}, 16, 813},
        {"a text, and a button at the top", {20, 600, 300, 20}, {300, 20, 40, 40}, {}, 557, 813},
        {"buttons, one above the other", {}, {20, 520, 100, 40}, {20, 600, 100, 40}, 416, 667},
        {"a button, and a text above it", {20, 500, 300, 20}, {20, 580, 100, 40}, {}, 16, 775},
    };
    for (const auto& each : cases) {
        text.setFrame(each.text);
        probe_->addButton.setFrame(each.add);
        probe_->cancelButton.setFrame(each.cancel);
        Notice notice(window_, 1);
        notice.keep({.text = "Not added: 1", .button = "Close"});
        const CGRect panel = window_.subviews().back()->frame();
        EXPECT_EQ(panel.size.height, 94) << each.what;
        EXPECT_EQ(panel.minY(), each.top) << each.what;
        EXPECT_EQ(notice.heightBesideTexts(), each.height) << each.what;
    }
}

} // namespace sela
