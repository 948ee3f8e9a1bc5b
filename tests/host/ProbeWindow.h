#pragma once

#include "host/OffscreenEnvironment.h"
#include "host/ShareWindow.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

#include <gtest/gtest.h>

#include <QTest>

#include <string>
#include <vector>

namespace sela {

/// A screen with named buttons and a table of 3 sections by 40 rows, that keeps a record of what was touched.
class ProbeController : public UIViewController, public UITableViewDataSource, public UITableViewDelegate {
public:
    void viewDidLoad() override;

    int numberOfSections(UITableView&) override { return 3; }
    int numberOfRows(UITableView&, int) override { return 40; }
    UITableViewCell& cellForRow(UITableView& tableView, const IndexPath& indexPath) override;
    void didSelectRow(UITableView&, const IndexPath& indexPath) override;

    UIButton addButton;    ///< at (20, 20), 100 by 40
    UIButton hiddenButton; ///< beside it
    UIButton cancelButton; ///< beside that
    UIButton coveredButton;
    UIView cover;
    UIButton button7;
    UITableView tableView; ///< at (0, 200), 375 by 400

    std::vector<std::string> touched;

private:
    void place(UIButton& button, const char* name, const CGRect& frame);
    void buttonTouched(UIButton& button);
};

/// A probe screen, on a clock that the test moves.
class ProbeTest : public testing::Test {
protected:
    ProbeTest() { window_.setRootViewController(probe_); }

    OffscreenEnvironment environment_;
    ViewPainter painter_{environment_.measurer};
    std::shared_ptr<ProbeController> probe_ = std::make_shared<ProbeController>();
    UIWindow window_{{375, 667}};
};

/// A probe screen shown at 2 pixels to a point, where real events of the window system arrive.
class ProbeWindowTest : public ProbeTest {
protected:
    void SetUp() override {
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

    ShareWindow shareWindow_{window_, painter_, commandLine()};
};

} // namespace sela
