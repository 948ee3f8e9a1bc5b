#include "platform/uikit/UITableView.h"

#include "platform/foundation/FatalError.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

UITableView::UITableView(const CGRect& frame) : UITableView(std::string_view()) {
    setFrame(frame);
}

UITableView::UITableView(std::string_view name) : UIScrollView(name) {
    setAccessibilityRole(AccessibilityRole::list);
}

UITableView::~UITableView() = default;

void UITableView::setDataSource(UITableViewDataSource* dataSource) {
    dataSource_ = dataSource;
    reloadData();
}

void UITableView::setDelegate(UITableViewDelegate* delegate) {
    delegate_ = delegate;
    reloadData();
}

void UITableView::setSeparatorStyle(SeparatorStyle style) {
    separatorStyle_ = style;
    for (const auto& [indexPath, cell] : visible_)
        cell->setShowsSeparator(style == SeparatorStyle::singleLine);
}

void UITableView::setHidden(bool hidden) {
    if (hidden == isHidden())
        return;
    UIScrollView::setHidden(hidden);
    if (hidden)
        recycleAll();
    setNeedsLayout();
}

void UITableView::registerCellFactory(const std::string& identifier, CellFactory factory) {
    factories_[identifier] = std::move(factory);
}

UITableViewCell& UITableView::dequeueReusableCell(const std::string& identifier, const IndexPath&) {
    std::vector<UITableViewCell*>& reusable = reusable_[identifier];
    if (reusable.empty()) {
        const auto factory = factories_.find(identifier);
        if (factory == factories_.end())
            fatalError("UITableView: no cell class is registered for " + identifier);
        cells_.push_back(factory->second(UITableViewCell::Style::normal, identifier));
        dequeued_.push_back(cells_.back().get());
    } else {
        dequeued_.push_back(reusable.back());
        reusable.pop_back();
        dequeued_.back()->prepareForReuse();
    }
    return *dequeued_.back();
}

void UITableView::reloadData() {
    loaded_ = false;
    selectedRow_.reset();
    highlightedRow_.reset();
    recycleAll();
    setNeedsLayout();
}

void UITableView::loadIfNeeded() {
    if (std::exchange(loaded_, true))
        return;
    const int sections = dataSource_ ? std::max(0, dataSource_->numberOfSections(*this)) : 0;
    sectionRows_.assign(static_cast<std::size_t>(sections), 0);
    for (int section = 0; section < sections; ++section)
        sectionRows_[static_cast<std::size_t>(section)] =
            std::max(0, dataSource_->numberOfRows(*this, section));
    rowsChanged();
    rowHeight_ =
        delegate_ && rowCount_ > 0 ? delegate_->heightForRow(*this, indexPathAt(0)) : defaultRowHeight;
    updateContentSize();
}

void UITableView::reloadSections(const std::vector<int>& sections) {
    if (!loaded_)
        return;
    highlight(std::nullopt);
    for (const int section : sections) {
        if (section < 0 || section >= numberOfSections())
            fatalError("UITableView: there is no section " + std::to_string(section));
        sectionRows_[static_cast<std::size_t>(section)] =
            std::max(0, dataSource_->numberOfRows(*this, section));
        if (selectedRow_ && selectedRow_->section == section)
            selectedRow_.reset();
        const auto first = visible_.lower_bound({0, section});
        const auto last = visible_.lower_bound({0, section + 1});
        for (auto place = first; place != last; ++place)
            recycle(*place->second);
        visible_.erase(first, last);
    }
    rowsChanged();
    updateContentSize();
    updateVisibleCells();
}

void UITableView::rowsChanged() {
    sectionStarts_.resize(sectionRows_.size());
    rowCount_ = 0;
    for (std::size_t section = 0; section < sectionRows_.size(); ++section) {
        sectionStarts_[section] = rowCount_;
        rowCount_ += sectionRows_[section];
    }
}

void UITableView::updateContentSize() {
    setContentSize({bounds().size.width, rowCount_ * std::max(0.0, rowHeight_)});
}

int UITableView::numberOfSections() {
    loadIfNeeded();
    return static_cast<int>(sectionRows_.size());
}

int UITableView::numberOfRows(int section) {
    loadIfNeeded();
    return section >= 0 && section < numberOfSections() ? sectionRows_[static_cast<std::size_t>(section)] : 0;
}

double UITableView::rowHeight() {
    loadIfNeeded();
    return rowHeight_;
}

bool UITableView::contains(const IndexPath& indexPath) {
    return indexPath.row >= 0 && indexPath.row < numberOfRows(indexPath.section);
}

int UITableView::indexOf(const IndexPath& indexPath) const {
    return sectionStarts_[static_cast<std::size_t>(indexPath.section)] + indexPath.row;
}

IndexPath UITableView::indexPathAt(int index) const {
    // Of the sections that start at the same row all but the last are empty.
    const auto next = std::ranges::upper_bound(sectionStarts_, index);
    const auto section = static_cast<int>(next - sectionStarts_.begin()) - 1;
    return {.row = index - sectionStarts_[static_cast<std::size_t>(section)], .section = section};
}

UITableViewCell* UITableView::cellForRow(const IndexPath& indexPath) {
    updateVisibleCells();
    const auto found = visible_.find(indexPath);
    return found == visible_.end() ? nullptr : found->second;
}

std::vector<IndexPath> UITableView::indexPathsForVisibleRows() {
    updateVisibleCells();
    std::vector<IndexPath> rows;
    for (const auto& [indexPath, cell] : visible_)
        rows.push_back(indexPath);
    return rows;
}

std::optional<IndexPath> UITableView::indexPathForRow(CGPoint point) {
    loadIfNeeded();
    if (rowHeight_ <= 0 || point.x < 0 || point.x >= bounds().size.width || point.y < 0)
        return std::nullopt;
    const double index = std::floor(point.y / rowHeight_);
    if (index >= rowCount_)
        return std::nullopt;
    return indexPathAt(static_cast<int>(index));
}

CGRect UITableView::rectForRow(const IndexPath& indexPath) {
    if (!contains(indexPath))
        return {};
    return {0, indexOf(indexPath) * rowHeight_, bounds().size.width, rowHeight_};
}

void UITableView::scrollToRow(const IndexPath& indexPath) {
    if (!contains(indexPath))
        return;
    const CGRect row = rectForRow(indexPath);
    const double top = contentOffset().y;
    if (row.minY() < top)
        setContentOffset(row.origin);
    else if (row.maxY() > top + bounds().size.height)
        setContentOffset({0, row.maxY() - bounds().size.height});
}

void UITableView::selectRow(const IndexPath& indexPath) {
    if (!contains(indexPath))
        return;
    if (selectedRow_)
        deselectRow(*selectedRow_);
    selectedRow_ = indexPath;
    if (const auto found = visible_.find(indexPath); found != visible_.end())
        found->second->setSelected(true, false);
}

void UITableView::deselectRow(const IndexPath& indexPath) {
    if (selectedRow_ != indexPath)
        return;
    selectedRow_.reset();
    if (const auto found = visible_.find(indexPath); found != visible_.end())
        found->second->setSelected(false, false);
}

void UITableView::layoutSubviews() {
    loadIfNeeded();
    updateContentSize();
    updateVisibleCells();
}

void UITableView::didScroll() {
    updateVisibleCells();
}

void UITableView::updateVisibleCells() {
    // Filling a cell may ask the table for its cells.
    if (std::exchange(updating_, true))
        return;
    loadIfNeeded();
    int first = 0;
    int end = 0;
    if (rowHeight_ > 0 && !bounds().isEmpty() && !isHidden()) {
        const auto limited = [&](double row) {
            return static_cast<int>(std::clamp<double>(row, 0, rowCount_));
        };
        first = limited(std::floor(bounds().minY() / rowHeight_));
        end = limited(std::ceil(bounds().maxY() / rowHeight_));
    }
    std::erase_if(visible_, [&](const auto& place) {
        const bool stays =
            contains(place.first) && indexOf(place.first) >= first && indexOf(place.first) < end;
        if (!stays)
            recycle(*place.second);
        return !stays;
    });
    performWithoutAnimation([&] {
        for (int index = first; index < end; ++index)
            showRow(indexPathAt(index));
    });
    updating_ = false;
}

void UITableView::showRow(const IndexPath& indexPath) {
    UITableViewCell*& place = visible_[indexPath];
    if (!place) {
        UITableViewCell& cell = dataSource_->cellForRow(*this, indexPath);
        for (UITableViewCell* const unused : std::exchange(dequeued_, {}))
            if (unused != &cell)
                recycle(*unused);
        place = &cell;
        cell.setSelected(indexPath == selectedRow_, false);
        cell.setHighlighted(indexPath == highlightedRow_, false);
        cell.setShowsSeparator(separatorStyle_ == SeparatorStyle::singleLine);
        insertSubview(cell, 0);
    }
    place->setLayoutFrame(rectForRow(indexPath));
}

void UITableView::recycle(UITableViewCell& cell) {
    cell.removeFromSuperview();
    if (cell.reuseIdentifier())
        reusable_[*cell.reuseIdentifier()].push_back(&cell);
}

void UITableView::recycleAll() {
    for (const auto& [indexPath, cell] : visible_)
        recycle(*cell);
    visible_.clear();
}

void UITableView::highlight(std::optional<IndexPath> indexPath) {
    const auto show = [&](bool highlighted) {
        if (!highlightedRow_)
            return;
        if (const auto found = visible_.find(*highlightedRow_); found != visible_.end())
            found->second->setHighlighted(highlighted, false);
    };
    show(false);
    highlightedRow_ = indexPath;
    show(true);
}

void UITableView::touchesBegan(const UITouch& touch) {
    touchStart_ = touch.locationInWindow;
    highlight(indexPathForRow(touch.location(*this)));
}

void UITableView::touchesMoved(const UITouch& touch) {
    if (std::hypot(touch.locationInWindow.x - touchStart_.x, touch.locationInWindow.y - touchStart_.y) >
        tapMovementLimit)
        highlight(std::nullopt);
}

void UITableView::touchesEnded(const UITouch&) {
    const std::optional<IndexPath> row = highlightedRow_;
    highlight(std::nullopt);
    if (!row)
        return;
    selectRow(*row);
    if (delegate_)
        delegate_->didSelectRow(*this, *row);
}

void UITableView::touchesCancelled(const UITouch&) {
    highlight(std::nullopt);
}

} // namespace sela
