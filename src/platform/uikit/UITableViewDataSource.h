#pragma once

#include "platform/uikit/IndexPath.h"

namespace sela {

class UITableView;
class UITableViewCell;

/// What a table shows. The table asks on the main thread: the numbers when it reloads, a cell when its row
/// comes into view.
class UITableViewDataSource {
public:
    virtual ~UITableViewDataSource() = default;

    virtual int numberOfSections(UITableView&) { return 1; }
    virtual int numberOfRows(UITableView& tableView, int section) = 0;

    /// The filled cell for a row, taken from `UITableView::dequeueReusableCell`.
    virtual UITableViewCell& cellForRow(UITableView& tableView, const IndexPath& indexPath) = 0;
};

} // namespace sela
