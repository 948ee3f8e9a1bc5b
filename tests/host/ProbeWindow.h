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

class ProbeCell : public UITableViewCell {
public:
    ProbeCell(Style style, const std::optional<std::string>& reuseIdentifier)
        : UITableViewCell(style, reuseIdentifier) {
        showChildButton.setAccessibilityLabel("showChildButton");
        showChildButton.setFrame({320, 4, 40, 36});
        showChildButton.addTarget(this, &ProbeCell::buttonTouched, UIControl::Event::touchUpInside);
        contentView().addSubview(showChildButton);
    }

    UIButton showChildButton{"showChildButton"};
    std::vector<std::string>* touched = nullptr;
    int section = 0;

private:
    void buttonTouched(UIButton&) { touched->push_back("showChild " + std::to_string(section)); }
};

/// A screen with named buttons and a table of 3 sections by 40 rows, that keeps a record of what was touched.
class ProbeController : public UIViewController, public UITableViewDataSource, public UITableViewDelegate {
public:
    void viewDidLoad() override {
        UIViewController::viewDidLoad();
        place(addButton, {20, 20, 100, 40});
        place(hiddenButton, {140, 20, 100, 40});
        hiddenButton.setHidden(true);
        place(cancelButton, {260, 20, 100, 40});
        place(coveredButton, {20, 80, 100, 40});
        cover.setFrame({0, 70, 200, 60});
        view().addSubview(cover);
        place(button7, {20, 140, 60, 40});
        addButton.addKeyCommand(UIKeyCommand::inputReturn);
        cancelButton.addKeyCommand(UIKeyCommand::inputEscape);
        button7.addKeyCommand("7");

        tableView.setFrame({0, 200, 375, 400});
        tableView.registerClass<ProbeCell>("ProbeCell");
        tableView.setDataSource(this);
        tableView.setDelegate(this);
        view().addSubview(tableView);
    }

    int numberOfSections(UITableView&) override { return 3; }
    int numberOfRows(UITableView&, int) override { return 40; }

    UITableViewCell& cellForRow(UITableView& table, const IndexPath& indexPath) override {
        auto& cell = static_cast<ProbeCell&>(table.dequeueReusableCell("ProbeCell", indexPath));
        cell.touched = &touched;
        cell.section = indexPath.section;
        cell.showChildButton.setHidden(indexPath.row != 0);
        return cell;
    }

    void didSelectRow(UITableView&, const IndexPath& indexPath) override {
        touched.push_back("row " + std::to_string(indexPath.section) + " " + std::to_string(indexPath.row));
    }

    UIButton addButton{"addButton"};       ///< at (20, 20), 100 by 40, of the key Return
    UIButton hiddenButton{"hiddenButton"}; ///< beside it
    UIButton cancelButton{"cancelButton"}; ///< beside that, of the key Escape
    UIButton coveredButton{"coveredButton"};
    UIView cover;
    UIButton button7{"button7"};        ///< of the key 7
    UITableView tableView{"tableView"}; ///< at (0, 200), 375 by 400

    std::vector<std::string> touched;

private:
    void place(UIButton& button, const CGRect& frame) {
        button.setTitle(button.name());
        button.setFrame(frame);
        button.addTarget(this, &ProbeController::buttonTouched, UIControl::Event::touchUpInside);
        view().addSubview(button);
    }

    void buttonTouched(UIButton& button) { touched.push_back(button.name()); }
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
        bool isShown = false;
        shareWindow_.setFirstFrameHandler([&] { isShown = true; });
        shareWindow_.open();
        ASSERT_TRUE(QTest::qWaitFor([&] { return isShown; }));
        window_.prepareFrame();
    }

    /// The color on the display at a place in pixels.
    QRgb pixel(int x, int y) {
        return shareWindow_.screen()->grabWindow(shareWindow_.winId()).toImage().pixel(x, y);
    }

    static CommandLine commandLine() {
        return CommandLine::parse({"--screen", "375x667", "--scale", "2"}).value();
    }

    ShareWindow shareWindow_{window_, painter_, commandLine(), CardPlacement::on(commandLine())};
};

} // namespace sela
