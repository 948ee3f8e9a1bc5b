#include "host/KeyboardNavigation.h"

#include "host/ScreenElements.h"
#include "host/ViewLocator.h"
#include "platform/uikit/UITableView.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sela {

namespace {

/// The nearest view of a class that `view` is or lies in; null when there is none.
template<class View>
View* enclosing(UIView& view) {
    UIView* above = &view;
    while (above && !dynamic_cast<View*>(above))
        above = above->superview();
    return static_cast<View*>(above);
}

/// The key command input of the key; empty for a key that only moves the focus or activates what has it.
std::string inputOf(const KeyboardNavigation::Key& key) {
    switch (key.code) {
    case Qt::Key_Escape:
        return std::string(UIKeyCommand::inputEscape);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return std::string(UIKeyCommand::inputReturn);
    case Qt::Key_Backspace:
        return std::string(UIKeyCommand::inputDelete);
    default:
        break;
    }
    // The digits of other scripts count as those of the keypad.
    const int digit = key.text.size() == 1 ? key.text.front().digitValue() : -1;
    return digit >= 0 ? std::to_string(digit) : std::string();
}

/// The row this many rows further on, or the last one in that direction.
IndexPath rowBeside(UITableView& table, IndexPath row, int rows) {
    const int step = rows < 0 ? -1 : 1;
    for (IndexPath next = row; rows != 0;) {
        next.row += step;
        while (next.row < 0 && --next.section >= 0)
            next.row = table.numberOfRows(next.section) - 1;
        while (next.section >= 0 && next.section < table.numberOfSections() &&
               next.row >= table.numberOfRows(next.section))
            next = {.row = 0, .section = next.section + 1};
        if (next.section < 0 || next.section >= table.numberOfSections())
            return row;
        row = next;
        rows -= step;
    }
    return row;
}

} // namespace

void KeyboardNavigation::press(const Key& key) {
    window_.prepareFrame();
    const std::string input = inputOf(key);
    if (key.held && (!input.empty() || key.code == Qt::Key_Space))
        return;
    catchUp();
    const bool works = key.code == Qt::Key_Space || input == UIKeyCommand::inputReturn;
    if ((works && tapFocused()) || keep(input) || perform(input))
        return;
    switch (key.code) {
    case Qt::Key_Tab:
        moveAlong(1);
        break;
    case Qt::Key_Backtab:
        moveAlong(-1);
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (!foldRow((key.code == Qt::Key_Right) != isReadFromRight()))
            moveTowards(key.code == Qt::Key_Right ? 1 : -1, 0);
        break;
    default:
        if (!moveRow(key.code) && (key.code == Qt::Key_Up || key.code == Qt::Key_Down))
            moveTowards(0, key.code == Qt::Key_Down ? 1 : -1);
        break;
    }
}

bool KeyboardNavigation::isReadFromRight() const {
    return window_.effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
}

void KeyboardNavigation::catchUp() {
    if (!window_.isIdle())
        return;
    const Secret digits = std::exchange(kept_, {});
    for (const char digit : digits.exposed())
        perform(std::string_view(&digit, 1));
}

/// Keeps a digit that no screen at rest can take now; false when it is none, or screens are at rest.
bool KeyboardNavigation::keep(const std::string& input) {
    constexpr std::size_t most = 32;
    const bool isDigit = input.size() == 1 && input.front() >= '0' && input.front() <= '9';
    if (!isDigit || window_.isIdle() || ViewLocator::keyTarget(window_, input) || kept_.size() >= most)
        return false;
    kept_.append(input.front());
    return true;
}

/// Runs the screen's key command for this input; false when there is none.
bool KeyboardNavigation::perform(std::string_view input) {
    const std::optional<ViewLocator::KeyTarget> target =
        input.empty() ? std::nullopt : ViewLocator::keyTarget(window_, input);
    if (!target)
        return false;
    if (target->command.action)
        target->command.action();
    else
        window_.tap(target->tapPoint);
    return true;
}

bool KeyboardNavigation::tapFocused() {
    UIView* const view = focusedView();
    return view && ScreenElements::tap(window_, *view);
}

UIView* KeyboardNavigation::focusedView() const {
    UIView* view = focus_.view.get();
    if (!view || view->window() != &window_)
        return nullptr;
    if (focus_.row) {
        view = static_cast<UITableView&>(*view).cellForRow(*focus_.row);
        if (view && !focus_.part.empty())
            view = view->viewNamed(focus_.part);
    }
    return view && window_.tapPoint(*view) ? view : nullptr;
}

void KeyboardNavigation::setFocusedView(UIView& view) {
    UITableView* const table = enclosing<UITableView>(view);
    UITableViewCell* const cell = enclosing<UITableViewCell>(view);
    if (!table || !cell) {
        focus_ = {.view = ViewReference(view), .row = {}, .part = {}};
        return;
    }
    focus_ = {.view = ViewReference<UIView>(*table),
              .row = table->indexPathForRow(cell->layoutFrame().center()),
              .part = &view == cell ? std::string() : view.name()};
}

void KeyboardNavigation::focusRow(UITableView& table, const IndexPath& row) {
    focus_ = {.view = ViewReference<UIView>(table), .row = row, .part = {}};
    table.scrollToRow(row);
    table.layoutIfNeeded();
}

/// The row that has the focus itself.
std::optional<KeyboardNavigation::TableRow> KeyboardNavigation::focusedRow() const {
    UIView* const view = focusedView();
    if (!view || !focus_.row || !focus_.part.empty())
        return std::nullopt;
    return TableRow{*enclosing<UITableView>(*view), *focus_.row};
}

/// The row that has the focus or contains the control that has it.
std::optional<KeyboardNavigation::TableRow> KeyboardNavigation::currentRow() const {
    UIView* const view = focusedView();
    if (!view || !focus_.row)
        return std::nullopt;
    return TableRow{*enclosing<UITableView>(*view), *focus_.row};
}

/// What Tab stops at, in reading order: of each table one row and the controls inside it.
std::vector<UIView*> KeyboardNavigation::stops() const {
    std::vector<UIView*> stops;
    const auto add = [&](UIView* view) {
        if (ScreenElements::isControl(*view) && window_.tapPoint(*view))
            stops.push_back(view);
    };
    const std::optional<TableRow> current = currentRow();
    for (UIView* const element : ScreenElements::inside(window_, window_)) {
        auto* const table = dynamic_cast<UITableView*>(element);
        if (!table) {
            add(element);
            continue;
        }
        const std::vector<IndexPath> rows = table->indexPathsForVisibleRows();
        const bool isCurrent = current && &current->table == table;
        UIView* const row =
            rows.empty() ? nullptr : table->cellForRow(isCurrent ? current->row : rows.front());
        if (!row)
            continue;
        add(row);
        for (UIView* const control : ScreenElements::inside(window_, *row))
            add(control);
    }
    return stops;
}

void KeyboardNavigation::moveAlong(int step) {
    const std::vector<UIView*> all = stops();
    if (all.empty())
        return;
    const auto count = static_cast<std::ptrdiff_t>(all.size());
    const auto found = std::ranges::find(all, focusedView());
    std::ptrdiff_t place = step > 0 ? 0 : count - 1;
    if (found != all.end())
        place = (found - all.begin() + step + count) % count;
    setFocusedView(*all[static_cast<std::size_t>(place)]);
}

/// Goes to the nearest control in the direction of (`x`, `y`), of which one is 0; an offset to the side
/// counts as a larger distance.
void KeyboardNavigation::moveTowards(double x, double y) {
    UIView* const from = focusedView();
    if (!from) {
        moveAlong(1);
        return;
    }
    constexpr double asideWeight = 2;
    const CGPoint start = window_.shownRect(*from).center();
    double shortest = std::numeric_limits<double>::infinity();
    UIView* nearest = nullptr;
    for (UIView* const stop : stops()) {
        const CGPoint place = window_.shownRect(*stop).center();
        const double ahead = (place.x - start.x) * x + (place.y - start.y) * y;
        const double aside = std::abs((place.x - start.x) * y) + std::abs((place.y - start.y) * x);
        if (ahead < 1 || stop == from || ahead + asideWeight * aside >= shortest)
            continue;
        shortest = ahead + asideWeight * aside;
        nearest = stop;
    }
    if (nearest)
        setFocusedView(*nearest);
}

/// Moves from row to row where there is a table; false when the key is none of these, or there is none.
bool KeyboardNavigation::moveRow(int code) {
    std::optional<TableRow> from = currentRow();
    const bool enters = !from && !focusedView();
    if (enters)
        for (UIView* const stop : stops())
            if (UITableViewCell* const cell = enclosing<UITableViewCell>(*stop); cell && !from)
                if (const auto row =
                        enclosing<UITableView>(*cell)->indexPathForRow(cell->layoutFrame().center()))
                    from.emplace(TableRow{*enclosing<UITableView>(*cell), *row});
    if (!from)
        return false;
    UITableView& table = from->table;
    const auto page = static_cast<int>(table.bounds().size.height / table.rowHeight());
    constexpr int everything = std::numeric_limits<int>::max();
    int rows = 0;
    switch (code) {
    case Qt::Key_Up:
        rows = -1;
        break;
    case Qt::Key_Down:
        rows = 1;
        break;
    case Qt::Key_PageUp:
        rows = -page;
        break;
    case Qt::Key_PageDown:
        rows = page;
        break;
    case Qt::Key_Home:
        rows = -everything;
        break;
    case Qt::Key_End:
        rows = everything;
        break;
    default:
        return false;
    }
    focusRow(table, enters && std::abs(rows) == 1 ? from->row : rowBeside(table, from->row, rows));
    return true;
}

/// Unfolds or folds the focused row; folding a row that cannot fold focuses its parent. False when no row has
/// the focus.
bool KeyboardNavigation::foldRow(bool unfold) {
    const std::optional<TableRow> focused = focusedRow();
    UITableViewCell* const cell = focused ? focused->table.cellForRow(focused->row) : nullptr;
    if (!cell)
        return false;
    const auto changes =
        unfold ? AccessibilityExpandedStatus::collapsed : AccessibilityExpandedStatus::expanded;
    if (cell->accessibilityExpandedStatus() == changes) {
        const std::vector<UIView*> controls = ScreenElements::inside(window_, *cell);
        if (!controls.empty())
            ScreenElements::tap(window_, *controls.front());
    } else if (!unfold && focused->row.row > 0) {
        focusRow(focused->table, {.row = 0, .section = focused->row.section});
    }
    return true;
}

} // namespace sela
