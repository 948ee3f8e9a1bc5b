// The album picker with N albums in sections of ten: from the last digit to the laid out table, and one step
// of scrolling. Writes settings, so it runs with a home folder of its own below the temporary folder.

#include "BenchHome.h"
#include "platform/foundation/Data.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"
#include "store/SharedAlbum.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "support/FixedTextMeasurer.h"
#include "support/VirtualMainLoop.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace sela {
namespace {

/// This many albums for the vault, and as many for the decoy where there is one.
void publish(std::int64_t albums, bool decoy = false) {
    JSONWriter writer;
    writer.beginArray();
    for (std::int64_t i = 0; i < albums * (decoy ? 2 : 1); ++i) {
        SharedAlbum album{{"Album " + std::to_string(i / 10)}, i >= albums, std::nullopt, std::nullopt};
        if (i % 10 > 0)
            album.namePath.push_back("Child " + std::to_string(i));
        if (i % 7 == 0)
            album.password = Secret("1234");
        writeJSONRecord(writer, album);
    }
    writer.endArray();
    auto defaults = sharedDefaults();
    if (!defaults || defaults->setData(sharedAlbumsKey, asData(writer.text())) ||
        defaults->setString(sharedPasswordKey, "1234") || defaults->setString(sharedFakePasswordKey, "1235"))
        fatalError("the albums cannot be published");
}

/// A picker on the screen with all digits but the last.
struct LockedPicker {
    LockedPicker() {
        window.setRootViewController(navigation);
        navigation->pushViewController(picker, false);
        update();
        for (const char digit : {'1', '2', '3'})
            tap(digit);
    }

    void tap(char digit) {
        picker->onKeyTouched(
            dynamic_cast<UIButton&>(*picker->view().viewNamed(std::string("button") + digit)));
    }

    void update() {
        loop.runPending();
        window.prepareFrame();
    }

    FixedTextMeasurer text;
    VirtualMainLoop loop;
    ScopedMainQueue mainQueue{loop};
    UIWindow window{{375, 667}};
    std::shared_ptr<SelaShareExtensionAlbumsVc> picker = std::make_shared<SelaShareExtensionAlbumsVc>();
    std::shared_ptr<UINavigationController> navigation =
        std::make_shared<UINavigationController>(std::make_shared<UIViewController>());
};

void lastDigitToTable(benchmark::State& state) {
    publish(state.range(0), true);
    const auto digit = static_cast<char>('0' + state.range(1));
    for (auto _ : state) {
        state.PauseTiming();
        auto locked = std::make_unique<LockedPicker>();
        state.ResumeTiming();
        locked->tap(digit);
        locked->update();
        state.PauseTiming();
        locked.reset();
        state.ResumeTiming();
    }
}
// The time must not show an onlooker which code it was: the vault's, the decoy's, or (without a table) a
// wrong one. Few times, since making a picker takes longer than what is measured.
BENCHMARK(lastDigitToTable)
    ->Iterations(10)
    ->ArgNames({"albums", "digit"})
    ->ArgsProduct({{100, 1000, 10000, 100000}, {4, 5, 9}})
    ->Unit(benchmark::kMillisecond);

/// The part of that spent reading the catalogue.
void decodeAlbums(benchmark::State& state) {
    publish(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(SharedAlbumManager::getAlbums());
}
BENCHMARK(decodeAlbums)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// One row further at each step, back to the top after 50, so that each step fills a cell.
void scrollByARow(benchmark::State& state) {
    publish(state.range(0));
    LockedPicker open;
    open.tap('4');
    open.update();
    auto& table = dynamic_cast<UITableView&>(*open.picker->view().viewNamed("tableView"));
    int row = 0;
    for (auto _ : state) {
        row = (row + 1) % 50;
        table.setContentOffset({0, row * 55.0});
        open.window.prepareFrame();
    }
}
BENCHMARK(scrollByARow)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace sela

int main(int argc, char** argv) {
    const sela::BenchHome home;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
