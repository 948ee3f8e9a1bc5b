#pragma once

#include "platform/foundation/Secret.h"
#include "platform/uikit/IndexPath.h"
#include "platform/uikit/UIWindow.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

class UITableView;

/// Operates the screens of a window by keyboard, and keeps track of which control has the focus.
///
/// Tab and the arrows move the focus among the controls that a finger could reach; a table is one stop, whose
/// rows the vertical arrows walk through. Space and Return tap the focused control. Whatever has the focus,
/// the key commands of the views on the screen work: Escape, Backspace, Return with no focus, and digits.
/// Main thread only.
class KeyboardNavigation {
public:
    /// `window` must outlive this.
    explicit KeyboardNavigation(UIWindow& window) : window_(window) {}

    /// A key went down.
    struct Key {
        int code = 0;      ///< of Qt::Key
        QString text;      ///< what it types
        bool held = false; ///< the keyboard repeats it: only moves are made again
    };

    /// Handles the key on the screen that is shown; a key without a meaning there is ignored. Digits that are
    /// typed while screens move are kept for the next screen.
    void press(const Key& key);

    /// Types what was kept, in order, once the screens are at rest.
    void catchUp();

    /// The control that has the focus; null when none has, or it cannot be reached now.
    UIView* focusedView() const;

    /// Gives the focus to a control; if it cannot be reached, nothing has the focus.
    void setFocusedView(UIView& view);

private:
    /// A row is remembered by its place, since its cell may serve another row later.
    struct Focus {
        ViewReference<UIView> view; ///< the control, or the row's table
        std::optional<IndexPath> row;
        std::string part; ///< the name of a control inside the row; empty for the row itself
    };

    struct TableRow {
        UITableView& table;
        IndexPath row;
    };

    bool isReadFromRight() const;
    bool perform(std::string_view input);
    bool keep(const std::string& input);
    bool tapFocused();
    void moveAlong(int step);
    void moveTowards(double x, double y);
    bool moveRow(int code);
    bool foldRow(bool unfold);
    void focusRow(UITableView& table, const IndexPath& row);
    std::vector<UIView*> stops() const;
    std::optional<TableRow> focusedRow() const;
    std::optional<TableRow> currentRow() const;

    UIWindow& window_;
    Focus focus_;
    Secret kept_; ///< the digits that were typed while screens moved
};

} // namespace sela
