#pragma once

#include "platform/uikit/IndexPath.h"

namespace sela {

class UITableView;

/// Decides how a table's rows are laid out, and hears what the user does with them. Called on the main
/// thread.
class UITableViewDelegate {
public:
    virtual ~UITableViewDelegate() = default;

    /// The height of every row in points, asked for once per reload with the first row.
    virtual double heightForRow(UITableView&, const IndexPath&) { return 44; }

    /// The user tapped a row, which is selected by now. May destroy the table.
    virtual void didSelectRow(UITableView&, const IndexPath&) {}
};

} // namespace sela
