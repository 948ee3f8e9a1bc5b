#pragma once

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

#include <functional>
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
    std::function<void()> onCancel;

private:
    void place(UIButton& button, const char* name, const CGRect& frame);
    void buttonTouched(UIButton& button);
};

} // namespace sela
