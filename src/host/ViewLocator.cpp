#include "host/ViewLocator.h"

#include "platform/uikit/UITableView.h"

#include <charconv>
#include <functional>
#include <string>
#include <vector>

namespace sela::ViewLocator {

namespace {

/// The numbers of a name like "row:2:0" behind the word; absent when the word or a number is not as expected.
std::optional<std::vector<int>> numbersBehind(std::string_view word, std::string_view name) {
    if (!name.starts_with(word))
        return std::nullopt;
    name.remove_prefix(word.size());
    std::vector<int> numbers;
    while (!name.empty()) {
        int number = 0;
        const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), number);
        if (name.front() != ':' || error != std::errc() || number < 0)
            return std::nullopt;
        numbers.push_back(number);
        name.remove_prefix(static_cast<std::size_t>(end - name.data()));
    }
    return numbers;
}

/// Asks `find` about the views of the tree, the topmost first, until it finds a point.
std::optional<CGPoint> searchFromTop(UIView& view,
                                     const std::function<std::optional<CGPoint>(UIView&)>& find) {
    if (view.isHidden())
        return std::nullopt;
    const std::vector<UIView*> subviews = view.subviews();
    for (auto subview = subviews.rbegin(); subview != subviews.rend(); ++subview)
        if (const std::optional<CGPoint> point = searchFromTop(**subview, find))
            return point;
    return find(view);
}

/// The cell of a row, scrolled into view; null when the table has no such row.
UITableViewCell* revealedCell(UITableView& table, const IndexPath& indexPath) {
    if (indexPath.section >= table.numberOfSections() ||
        indexPath.row >= table.numberOfRows(indexPath.section))
        return nullptr;
    table.scrollToRow(indexPath);
    table.layoutIfNeeded();
    return table.cellForRow(indexPath);
}

std::optional<CGPoint> pointInRow(UIWindow& window, const IndexPath& indexPath, std::string_view viewName) {
    return searchFromTop(window, [&](UIView& view) -> std::optional<CGPoint> {
        auto* const table = dynamic_cast<UITableView*>(&view);
        UITableViewCell* const cell = table ? revealedCell(*table, indexPath) : nullptr;
        UIView* const target = cell && !viewName.empty() ? cell->viewNamed(viewName) : cell;
        return target ? window.tapPoint(*target) : std::nullopt;
    });
}

} // namespace

std::optional<CGPoint> tapPoint(UIWindow& window, std::string_view name) {
    constexpr std::string_view showChildButton = "showChildButton";
    window.prepareFrame();
    if (const auto numbers = numbersBehind("row", name); numbers && numbers->size() == 2)
        return pointInRow(window, {(*numbers)[1], (*numbers)[0]}, {});
    if (const auto numbers = numbersBehind(showChildButton, name); numbers && numbers->size() == 1)
        return pointInRow(window, {0, (*numbers)[0]}, showChildButton);
    return searchFromTop(window, [&](UIView& view) {
        return !name.empty() && view.name() == name ? window.tapPoint(view) : std::nullopt;
    });
}

} // namespace sela::ViewLocator
