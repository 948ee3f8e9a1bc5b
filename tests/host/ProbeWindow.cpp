#include "host/ProbeWindow.h"

namespace sela {

namespace {

class ProbeCell : public UITableViewCell {
public:
    ProbeCell(Style style, const std::optional<std::string>& reuseIdentifier)
        : UITableViewCell(style, reuseIdentifier) {
        showChildButton.setName("showChildButton");
        showChildButton.setAccessibilityLabel("showChildButton");
        showChildButton.setFrame({320, 4, 40, 36});
        showChildButton.addTarget(this, &ProbeCell::buttonTouched, UIControl::Event::touchUpInside);
        contentView().addSubview(showChildButton);
    }

    UIButton showChildButton;
    std::vector<std::string>* touched = nullptr;
    int section = 0;

private:
    void buttonTouched(UIButton&) { touched->push_back("showChild " + std::to_string(section)); }
};

} // namespace

void ProbeController::viewDidLoad() {
    UIViewController::viewDidLoad();
    place(addButton, "addButton", {20, 20, 100, 40});
    place(hiddenButton, "hiddenButton", {140, 20, 100, 40});
    hiddenButton.setHidden(true);
    place(cancelButton, "cancelButton", {260, 20, 100, 40});
    place(coveredButton, "coveredButton", {20, 80, 100, 40});
    cover.setFrame({0, 70, 200, 60});
    view().addSubview(cover);
    place(button7, "button7", {20, 140, 60, 40});

    tableView.setName("tableView");
    tableView.setFrame({0, 200, 375, 400});
    tableView.registerClass<ProbeCell>("ProbeCell");
    tableView.setDataSource(this);
    tableView.setDelegate(this);
    view().addSubview(tableView);
}

void ProbeController::place(UIButton& button, const char* name, const CGRect& frame) {
    button.setName(name);
    button.setTitle(name);
    button.setFrame(frame);
    button.addTarget(this, &ProbeController::buttonTouched, UIControl::Event::touchUpInside);
    view().addSubview(button);
}

void ProbeController::buttonTouched(UIButton& button) {
    touched.push_back(button.name());
}

UITableViewCell& ProbeController::cellForRow(UITableView& table, const IndexPath& indexPath) {
    auto& cell = static_cast<ProbeCell&>(table.dequeueReusableCell("ProbeCell", indexPath));
    cell.touched = &touched;
    cell.section = indexPath.section;
    cell.showChildButton.setHidden(indexPath.row != 0);
    return cell;
}

void ProbeController::didSelectRow(UITableView&, const IndexPath& indexPath) {
    touched.push_back("row " + std::to_string(indexPath.section) + " " + std::to_string(indexPath.row));
}

} // namespace sela
