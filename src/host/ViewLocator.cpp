#include "host/ViewLocator.h"

#include "platform/uikit/UITableView.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace sela::ViewLocator {

namespace {

/// A name like "row:2:0": a word and numbers.
struct NumberedName {
    std::string_view word;
    std::vector<int> numbers;
};

/// Absent when `name` is not of that form.
std::optional<NumberedName> parse(std::string_view name) {
    NumberedName parsed{name.substr(0, name.find(':')), {}};
    name.remove_prefix(parsed.word.size());
    while (!name.empty()) {
        int number = 0;
        const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), number);
        if (error != std::errc() || number < 0 || (end != name.data() + name.size() && *end != ':'))
            return std::nullopt;
        parsed.numbers.push_back(number);
        name.remove_prefix(static_cast<std::size_t>(end - name.data()));
    }
    return parsed;
}

/// Calls `find` on the views of the tree, the topmost first, until it returns something.
template<class Find>
auto searchFromTop(UIView& view, const Find& find) -> decltype(find(view)) {
    if (view.isHidden())
        return std::nullopt;
    const std::vector<UIView*> subviews = view.subviews();
    for (auto subview = subviews.rbegin(); subview != subviews.rend(); ++subview)
        if (auto found = searchFromTop(**subview, find))
            return found;
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
    window.prepareFrame();
    const std::optional<NumberedName> numbered = parse(name);
    const std::size_t numbers = numbered ? numbered->numbers.size() : 0;
    if (numbers == 2 && numbered->word == "row")
        return pointInRow(window, {numbered->numbers[1], numbered->numbers[0]}, {});
    if (numbers == 1 && !numbered->word.empty())
        return pointInRow(window, {0, numbered->numbers[0]}, numbered->word);
    return searchFromTop(window, [&](UIView& view) {
        return !name.empty() && view.name() == name ? window.tapPoint(view) : std::nullopt;
    });
}

std::optional<KeyTarget> keyTarget(UIWindow& window, std::string_view input) {
    window.prepareFrame();
    return searchFromTop(window, [&](UIView& view) -> std::optional<KeyTarget> {
        const auto found = std::ranges::find(view.keyCommands(), input, &UIKeyCommand::input);
        if (found == view.keyCommands().end())
            return std::nullopt;
        const std::optional<CGPoint> point = window.tapPoint(view);
        return point ? std::optional(KeyTarget{view, *point, *found}) : std::nullopt;
    });
}

} // namespace sela::ViewLocator
