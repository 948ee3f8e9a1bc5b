#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/ViewTest.h"

#include <gmock/gmock.h>

#include <memory>
#include <utility>

namespace sela {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Cell : public UITableViewCell {
public:
    using UITableViewCell::UITableViewCell;
    IndexPath shown;
};

/// Sections of rows of 50 points in a table of 300 by 400.
class TableTest : public ViewTest, public UITableViewDataSource, public UITableViewDelegate {
public:
    TableTest() {
        window.addSubview(table);
        table.registerClass<Cell>("cell");
        table.setDataSource(this);
        table.setDelegate(this);
    }

    int numberOfSections(UITableView&) override { return static_cast<int>(rows.size()); }
    int numberOfRows(UITableView&, int section) override { return rows[static_cast<std::size_t>(section)]; }
    double heightForRow(UITableView&, const IndexPath&) override { return 50; }
    UITableViewCell& cellForRow(UITableView& tableView, const IndexPath& indexPath) override {
        auto& cell = static_cast<Cell&>(tableView.dequeueReusableCell("cell", indexPath));
        cell.shown = indexPath;
        ++filled;
        return cell;
    }
    void fail(UITapGestureRecognizer&) { ADD_FAILURE() << "taken for a tap"; }
    void didSelectRow(UITableView&, const IndexPath& indexPath) override { selected.push_back(indexPath); }

    /// Shows sections of so many rows.
    void show(std::vector<int> rowsOfSections) {
        rows = std::move(rowsOfSections);
        table.reloadData();
        window.prepareFrame();
        filled = 0;
    }

    void expectCellsMatchTheirRows() {
        for (const IndexPath& indexPath : table.indexPathsForVisibleRows()) {
            auto* const cell = static_cast<Cell*>(table.cellForRow(indexPath));
            ASSERT_NE(cell, nullptr);
            EXPECT_EQ(cell->shown, indexPath);
            EXPECT_EQ(cell->frame(), table.rectForRow(indexPath));
            EXPECT_EQ(cell->superview(), &table);
        }
    }

    /// A drag by steps of 1/60 s, then release.
    void flick(CGPoint from, double distance, int steps) {
        window.touchBegan(from);
        for (int step = 1; step <= steps; ++step) {
            loop.advance(1.0 / 60);
            window.touchMoved({from.x, from.y + distance * step / steps});
        }
        window.touchEnded({from.x, from.y + distance});
    }

    std::vector<int> rows;
    UITableView table{{0, 0, 300, 400}};
    std::vector<IndexPath> selected;
    int filled = 0;
};

TEST_F(TableTest, ShowsTheRowsInViewOfSectionsSomeOfThemEmpty) {
    show({2, 0, 0, 1, 3});
    EXPECT_THAT(table.indexPathsForVisibleRows(),
                ElementsAre(IndexPath{0, 0}, IndexPath{1, 0}, IndexPath{0, 3}, IndexPath{0, 4},
                            IndexPath{1, 4}, IndexPath{2, 4}));
    EXPECT_EQ(table.contentSize().height, 300);
    EXPECT_EQ(table.rectForRow({0, 3}), CGRect(0, 100, 300, 50));
    EXPECT_EQ(table.indexPathForRow({10, 149}), (IndexPath{0, 3}));
    EXPECT_EQ(table.indexPathForRow({10, 300}), std::nullopt);
    EXPECT_EQ(table.cellForRow({0, 1}), nullptr);
    expectCellsMatchTheirRows();
    show({});
    EXPECT_THAT(table.indexPathsForVisibleRows(), IsEmpty());
    EXPECT_EQ(table.numberOfRows(0), 0);
}

TEST_F(TableTest, AHundredThousandRowsNeedAScreenfulOfCells) {
    show(std::vector<int>(5000, 20));
    EXPECT_EQ(table.contentSize().height, 5'000'000);
    for (int step = 0; step < 2000; ++step)
        table.setContentOffset({0, step * 2499.0});
    table.setContentOffset({0, table.maximumOffset()});
    EXPECT_LE(table.cellCount(), 9u);
    EXPECT_LE(filled, 2001 * 9);
    EXPECT_EQ(table.indexPathsForVisibleRows().back(), (IndexPath{19, 4999}));
    expectCellsMatchTheirRows();
    filled = 0;
    for (int step = 0; step < 50; ++step)
        table.setContentOffset({0, 1000.0 + step});
    EXPECT_LE(filled, 10) << "cells in view were filled again";
}

TEST_F(TableTest, ReloadingASectionMovesThoseBelowAndFillsOnlyItsOwn) {
    show({1, 1, 1});
    rows = {1, 4, 1};
    table.reloadSections({1});
    EXPECT_EQ(filled, 4);
    EXPECT_EQ(table.rectForRow({0, 2}), CGRect(0, 250, 300, 50));
    expectCellsMatchTheirRows();
    rows = {1, 1, 1};
    table.reloadSections({1});
    EXPECT_EQ(table.contentSize().height, 150);
    expectCellsMatchTheirRows();
    EXPECT_LE(table.cellCount(), 6u);
    EXPECT_DEATH(table.reloadSections({3}), "no section 3");
}

TEST_F(TableTest, AListThatGoesOnShowsWhereItIs) {
    show({2});
    EXPECT_EQ(table.viewNamed("verticalScrollIndicator"), nullptr);
    show({16});
    const UIView* const indicator = table.viewNamed("verticalScrollIndicator");
    ASSERT_EQ(table.subviews().back(), indicator);
    EXPECT_EQ(indicator->frame(), CGRect(294, 3, 3, 197));
    table.setContentOffset({0, 400});
    EXPECT_EQ(indicator->frame(), CGRect(294, 600, 3, 197));
    table.setHidden(true);
    EXPECT_EQ(table.viewNamed("verticalScrollIndicator"), nullptr);
    table.setHidden(false);
    EXPECT_NE(table.viewNamed("verticalScrollIndicator"), nullptr);
}

TEST_F(TableTest, AReloadForgetsTheSelection) {
    show({2});
    tap({20, 60});
    EXPECT_EQ(table.indexPathForSelectedRow(), (IndexPath{1, 0}));
    show({2});
    EXPECT_EQ(table.indexPathForSelectedRow(), std::nullopt);
    EXPECT_FALSE(table.cellForRow({1, 0})->isSelected());
}

TEST_F(TableTest, NoOffsetGoesBeyondTheContent) {
    show({100});
    table.setContentOffset({0, 4000});
    show({10});
    EXPECT_EQ(table.contentOffset().y, 100);
    expectCellsMatchTheirRows();
    window.wheelScrolled({20, 100}, -60);
    window.wheelScrolled({20, 100}, 500);
    EXPECT_EQ(table.contentOffset().y, 100);
}

TEST_F(TableTest, TapsAndDragsAreToldApart) {
    const struct {
        const char* what;
        std::vector<CGPoint> moves;
        CGPoint end;
        std::vector<IndexPath> selected;
        double offset; ///< before the finger goes up
    } cases[] = {
        {"a tap", {}, {20, 110}, {{2, 0}}, 0},
        {"a trembling tap", {{26, 117}}, {20, 118}, {{2, 0}}, 0},
        {"sideways away and back", {{40, 110}}, {20, 110}, {}, 0},
        {"a drag", {{20, 99}, {20, 60}}, {20, 60}, {}, 39},
        {"a drag and back", {{20, 95}, {20, 60}, {20, 95}}, {20, 95}, {}, 0},
    };
    for (const auto& each : cases) {
        show({100});
        table.setContentOffset({0, 0});
        selected.clear();
        window.touchBegan({20, 110});
        EXPECT_TRUE(table.cellForRow({2, 0})->isHighlighted());
        for (const CGPoint& move : each.moves)
            window.touchMoved(move);
        loop.advance(0.2);
        EXPECT_EQ(table.contentOffset().y, each.offset) << each.what;
        window.touchEnded(each.end);
        EXPECT_EQ(selected, each.selected) << each.what;
        EXPECT_FALSE(table.cellForRow({2, 0})->isHighlighted()) << each.what;
        EXPECT_EQ(table.cellForRow({2, 0})->isSelected(), !each.selected.empty()) << each.what;
        loop.runUntilIdle();
    }
}

TEST_F(TableTest, AFlickRollsOnAndComesToRest) {
    show(std::vector<int>(1000, 100));
    flick({20, 350}, -300, 10);
    const double released = table.contentOffset().y;
    EXPECT_FALSE(window.isIdle());
    double lastStep = 1e9;
    for (int frame = 0; frame < 20; ++frame) {
        const double before = table.contentOffset().y;
        loop.advance(1.0 / 60);
        const double step = table.contentOffset().y - before;
        EXPECT_GT(step, 0);
        EXPECT_LT(step, std::exchange(lastStep, step) + 1e-6);
        expectCellsMatchTheirRows();
    }
    loop.runUntilIdle();
    EXPECT_TRUE(window.isIdle());
    // The finger's 1800 points a second, decaying by 0.2 % a millisecond, roll about 900 points.
    EXPECT_NEAR(table.contentOffset().y - released, 895, 60);
    EXPECT_THAT(selected, IsEmpty());
}

TEST_F(TableTest, ATouchStopsARollAndIsNoTap) {
    show({1000});
    flick({20, 350}, -300, 10);
    loop.advance(0.1);
    const double rolled = table.contentOffset().y;
    tap({20, 100});
    loop.advance(1);
    EXPECT_EQ(table.contentOffset().y, rolled);
    EXPECT_THAT(selected, IsEmpty());
    tap({20, 100});
    EXPECT_EQ(selected.size(), 1u);
}

TEST_F(TableTest, BouncesAtItsEnds) {
    show({10});
    window.touchBegan({20, 100});
    window.touchMoved({20, 120});
    window.touchMoved({20, 320});
    const double pulled = table.contentOffset().y;
    EXPECT_LT(pulled, -50);
    EXPECT_GT(pulled, -200) << "past its end the content follows the finger less than it moves";
    loop.advance(0.2);
    window.touchEnded({20, 320});
    EXPECT_EQ(table.contentOffset().y, pulled);
    loop.advance(0.1);
    EXPECT_GT(table.contentOffset().y, pulled);
    loop.runUntilIdle();
    EXPECT_EQ(table.contentOffset().y, 0);

    // A flick into the end shoots over it and returns.
    flick({20, 350}, -300, 6);
    double farthest = 0;
    for (int frame = 0; frame < 120; ++frame) {
        loop.advance(1.0 / 60);
        farthest = std::max(farthest, table.contentOffset().y);
    }
    EXPECT_GT(farthest, table.maximumOffset() + 10);
    EXPECT_LT(farthest, table.maximumOffset() + 300);
    EXPECT_EQ(table.contentOffset().y, table.maximumOffset());
}

TEST_F(TableTest, ADragThatStartsOnWhatACellHoldsScrollsAndIsNoTap) {
    show({100});
    UIView tappable({250, 0, 50, 50});
    tappable.addGestureRecognizer(std::make_unique<UITapGestureRecognizer>(this, &TableTest::fail));
    table.cellForRow({0, 0})->contentView().addSubview(tappable);
    window.touchBegan({260, 20});
    window.touchMoved({260, 5});
    window.touchMoved({260, -35});
    EXPECT_EQ(table.contentOffset().y, 40);
    window.touchEnded({260, -35});
}

TEST_F(TableTest, ATableThatLeavesItsWindowStopsRolling) {
    show({1000});
    flick({20, 350}, -300, 10);
    table.removeFromSuperview();
    EXPECT_FALSE(table.isDecelerating());
}

} // namespace
} // namespace sela
