#pragma once

#include "platform/uikit/IndexPath.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITableViewCell.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sela {

class UITableView;

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

/// Decides how a table's rows are laid out, and is called when the user selects one. Called on the main
/// thread.
class UITableViewDelegate {
public:
    virtual ~UITableViewDelegate() = default;

    /// The height of every row in points, asked for once per reload with the first row.
    virtual double heightForRow(UITableView&, const IndexPath&) { return 44; }

    /// The user tapped a row, which is selected by now. May destroy the table.
    virtual void didSelectRow(UITableView&, const IndexPath&) {}
};

/// A scrolling list of rows of one height in sections (plain style, no headers). Only the rows in view have
/// cells (none while the table is hidden), and a cell that scrolls out of view is reused; a reload costs time
/// in the number of sections, and scrolling in the number of visible rows. Main thread only.
class UITableView : public UIScrollView {
public:
    enum class SeparatorStyle { none, singleLine };
    using CellFactory = std::function<std::unique_ptr<UITableViewCell>(UITableViewCell::Style,
                                                                       const std::string& reuseIdentifier)>;

    /// Height of a row in points where no delegate says otherwise.
    static constexpr double defaultRowHeight = 44;

    explicit UITableView(const CGRect& frame = {});
    explicit UITableView(std::string_view name);
    ~UITableView() override;

    /// Not owned; it must outlive the table or be set to null before it is destroyed (usually it owns the
    /// table).
    void setDataSource(UITableViewDataSource* dataSource);
    void setDelegate(UITableViewDelegate* delegate);

    /// Lines between the rows, `singleLine` at first.
    SeparatorStyle separatorStyle() const { return separatorStyle_; }
    void setSeparatorStyle(SeparatorStyle style);

    /// How cells are made for an identifier.
    void registerCellFactory(const std::string& identifier, CellFactory factory);

    /// Cells of class `Cell`, which is constructed with a style and the identifier.
    template<class Cell>
    void registerClass(const std::string& identifier) {
        registerCellFactory(identifier, [](UITableViewCell::Style style, const std::string& reuseIdentifier) {
            return std::make_unique<Cell>(style, reuseIdentifier);
        });
    }

    /// A cell for the data source to fill: a reused one, else a new one. An identifier without a class stops
    /// the process.
    UITableViewCell& dequeueReusableCell(const std::string& identifier, const IndexPath& indexPath);

    /// Asks the data source for everything again; the selection is cleared, the offset kept as far as
    /// possible.
    void reloadData();

    /// Asks again for the rows of these sections only, without animation. Their cells are filled again.
    void reloadSections(const std::vector<int>& sections);

    int numberOfSections();
    int numberOfRows(int section);
    double rowHeight();

    /// The cell in view for a row; null when the row is out of view or the table hidden.
    UITableViewCell* cellForRow(const IndexPath& indexPath);

    /// The rows in view, in order.
    std::vector<IndexPath> indexPathsForVisibleRows();

    /// The row at a point of the content; absent when there is none.
    std::optional<IndexPath> indexPathForRow(CGPoint point);

    /// Where a row lies in the content.
    CGRect rectForRow(const IndexPath& indexPath);

    /// Moves the content as little as needed to bring the row wholly into view.
    void scrollToRow(const IndexPath& indexPath);

    std::optional<IndexPath> indexPathForSelectedRow() const { return selectedRow_; }

    /// Selects without calling the delegate; the former selection is cleared. A row that does not exist is
    /// ignored.
    void selectRow(const IndexPath& indexPath);
    void deselectRow(const IndexPath& indexPath);

    /// Cells that exist now, in view or kept for reuse.
    std::size_t cellCount() const { return cells_.size(); }

    void setHidden(bool hidden) override;
    void layoutSubviews() override;
    void touchesBegan(const UITouch& touch) override;
    void touchesMoved(const UITouch& touch) override;
    void touchesEnded(const UITouch& touch) override;
    void touchesCancelled(const UITouch& touch) override;

protected:
    void didScroll() override;

private:
    void loadIfNeeded();
    void rowsChanged();
    void updateContentSize();
    void updateVisibleCells();
    void showRow(const IndexPath& indexPath);
    void recycle(UITableViewCell& cell);
    void recycleAll();
    bool contains(const IndexPath& indexPath);
    int indexOf(const IndexPath& indexPath) const;
    IndexPath indexPathAt(int index) const;
    void highlight(std::optional<IndexPath> indexPath);

    UITableViewDataSource* dataSource_ = nullptr;
    UITableViewDelegate* delegate_ = nullptr;
    SeparatorStyle separatorStyle_ = SeparatorStyle::singleLine;
    std::map<std::string, CellFactory> factories_;
    std::vector<std::unique_ptr<UITableViewCell>> cells_;
    std::map<std::string, std::vector<UITableViewCell*>> reusable_;
    std::vector<UITableViewCell*> dequeued_;
    std::map<IndexPath, UITableViewCell*> visible_;
    std::vector<int> sectionRows_;
    std::vector<int> sectionStarts_;
    int rowCount_ = 0;
    double rowHeight_ = defaultRowHeight;
    bool loaded_ = false;
    bool updating_ = false;
    CGPoint touchStart_;
    std::optional<IndexPath> selectedRow_;
    std::optional<IndexPath> highlightedRow_;
};

} // namespace sela
