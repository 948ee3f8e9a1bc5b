#include "platform/foundation/NSLog.h"
#include "platform/snapkit/ConstraintViewDSL.h"
#include "ui/SelaShareExtensionAlbumCell.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace sela {
namespace {

/// A screen of `count` views in cards of ten: each view has a size, a centre line, and a place below the one
/// before it.
class Screen {
public:
    explicit Screen(int count) {
        UIView* card = nullptr;
        UIView* before = nullptr;
        for (int i = 0; i < count; ++i) {
            UIView& view = *views_.emplace_back(std::make_unique<UIView>());
            if (i % 10 == 0) {
                root_.addSubview(view);
                view.snp().makeConstraints(
                    [](ConstraintMaker& make) { make.edges().equalToSuperview().inset(8); });
                card = before = &view;
                continue;
            }
            card->addSubview(view);
            view.snp().makeConstraints([&](ConstraintMaker& make) {
                make.size().equalTo(CGSize{60, 44});
                make.centerX().equalToSuperview();
                make.top().equalTo(before == card ? card->snp().top() : before->snp().bottom()).offset(8);
            });
            before = &view;
        }
    }

    void layout(double width) {
        root_.setFrame({0, 0, width, 667});
        root_.layoutIfNeeded();
    }

private:
    UIView root_;
    std::vector<std::unique_ptr<UIView>> views_;
};

void layoutOfAScreen(benchmark::State& state) {
    Screen screen(static_cast<int>(state.range(0)));
    double width = 375;
    for (auto _ : state)
        screen.layout(width = 695 - width);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(layoutOfAScreen)->Arg(60)->Range(64, 4096)->Complexity(benchmark::oN);

void layoutOfATablesCell(benchmark::State& state) {
    const LogRedirection silence([](const std::string&) {});
    SelaShareExtensionAlbumCell cell(UITableViewCell::Style::normal);
    double width = 375;
    for (auto _ : state) {
        cell.setFrame({0, 0, width = 695 - width, SelaShareExtensionAlbumCell::rowHeight});
        cell.layoutIfNeeded();
    }
}
BENCHMARK(layoutOfATablesCell);

} // namespace
} // namespace sela
