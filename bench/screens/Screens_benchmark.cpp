// Layout and drawing of the screens, on a phone's display and on one of 4K: what one frame costs.

#include "BenchHome.h"
#include "host/CardPlacement.h"
#include "host/QtTextMeasurer.h"
#include "host/ViewPainter.h"
#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSExtensionItem.h"
#include "platform/extension/NSItemProvider.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIWindow.h"
#include "share/PrincipalClasses.h"
#include "store/SharedFolder.h"
#include "support/VirtualMainLoop.h"

#include <QGuiApplication>
#include <QImage>
#include <QThreadPool>
#include <benchmark/benchmark.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace sela {
namespace {

struct Display {
    CGSize points;
    double pixelsPerPoint;
};
constexpr Display phone{{375, 667}, 2};
constexpr Display display4K{{1280, 720}, 3};

constexpr double frame = 1.0 / 60;

std::string home;

void publish() {
    std::string catalogue = "[";
    for (int i = 0; i < 200; ++i)
        catalogue +=
            std::string(i ? "," : "") + R"({"namePath":["Album )" + std::to_string(i) + R"("],"fake":false})";
    catalogue += "]";
    auto defaults = sharedDefaults();
    if (!defaults || defaults->setData(sharedAlbumsKey, asData(catalogue)) ||
        defaults->setString(sharedPasswordKey, "1234"))
        fatalError("the albums cannot be published");
}

void savePicture(const std::string& path) {
    QImage picture(1000, 800, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    picture.save(QString::fromStdString(path));
}

/// The share screen with three attachments, as the window shows it, on a clock of its own.
struct Screen {
    explicit Screen(const Display& display)
        : pixelsPerPoint(display.pixelsPerPoint),
          pixels((QSizeF(display.points.width, display.points.height) * pixelsPerPoint).toSize(),
                 QImage::Format_ARGB32_Premultiplied),
          window(CardPlacement::screenFor(display.points)) {
        TextMeasurer::setCurrent(&measurer);
        UIScreen::main().setScale(pixelsPerPoint);
        NSExtensionItem::Attachments attachments;
        for (int i = 0; i < 3; ++i)
            attachments.push_back(NSItemProvider::ofFile(URL::fileURL(home + "/picture.png")));
        context = std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>{
            std::make_shared<NSExtensionItem>(std::move(attachments))});
        const auto root = makePrincipalViewController(principalClassName);
        root->setExtensionContext(context);
        window.setRootViewController(root);
        window.setSize(display.points);
        settle();
    }
    ~Screen() {
        TextMeasurer::setCurrent(nullptr);
        loop.runUntilIdle();
    }

    /// Lets time pass until nothing moves.
    void settle() {
        do {
            window.prepareFrame();
            loop.runUntilIdle();
            loop.advance(frame);
        } while (!window.isIdle());
        window.prepareFrame();
        paint(pixels.rect());
        window.takeDirtyRect();
    }

    void tap(const std::string& name) {
        UIView* const view = window.viewNamed(name);
        const std::optional<CGPoint> point = view ? window.tapPoint(*view) : std::nullopt;
        if (!point)
            fatalError("a view is missing");
        window.touchBegan(*point);
        window.touchEnded(*point);
    }

    void openPicker() {
        tap("albumButton");
        settle();
        for (const char digit : {'1', '2', '3', '4'})
            tap(std::string("button") + digit);
        settle();
    }

    void paint(const QRect& area) {
        painter.paint(pixels, area, window, {pixelsPerPoint, UIUserInterfaceStyle::light});
    }

    void drawFrame() {
        window.prepareFrame();
        const CGRect dirty = window.takeDirtyRect();
        paint(QRectF(dirty.minX() * pixelsPerPoint, dirty.minY() * pixelsPerPoint,
                     dirty.size.width * pixelsPerPoint, dirty.size.height * pixelsPerPoint)
                  .toAlignedRect() &
              pixels.rect());
    }

    VirtualMainLoop loop;
    ScopedMainQueue queue{loop};
    QtTextMeasurer measurer;
    ViewPainter painter{measurer};
    const double pixelsPerPoint;
    QImage pixels;
    std::shared_ptr<NSExtensionContext> context;
    UIWindow window;
};

/// All of the window is drawn again.
void cardFrame(benchmark::State& state, const Display& display) {
    Screen screen(display);
    for (auto _ : state)
        screen.paint(screen.pixels.rect());
}

void keypadFrame(benchmark::State& state, const Display& display) {
    Screen screen(display);
    screen.tap("albumButton");
    screen.settle();
    for (auto _ : state)
        screen.paint(screen.pixels.rect());
}

void pickerScrollFrame(benchmark::State& state, const Display& display) {
    Screen screen(display);
    screen.openPicker();
    auto& table = dynamic_cast<UITableView&>(*screen.window.viewNamed("tableView"));
    double offset = 0;
    for (auto _ : state) {
        offset = offset > 5000 ? 0 : offset + 17;
        table.setContentOffset({0, offset});
        screen.drawFrame();
    }
}

/// Some slides, whole ones, since their first frames take longer than the rest.
constexpr int framesOfPushes = 10 * 21;

void pushFrame(benchmark::State& state, const Display& display) {
    auto screen = std::make_unique<Screen>(display);
    screen->tap("albumButton");
    for (auto _ : state) {
        if (screen->window.isIdle()) {
            state.PauseTiming();
            screen.reset();
            screen = std::make_unique<Screen>(display);
            screen->tap("albumButton");
            state.ResumeTiming();
        }
        screen->loop.advance(frame);
        screen->drawFrame();
    }
}

/// What Qt's threads do counts, too.
void asFrame(benchmark::internal::Benchmark* made) {
    made->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(cardFrame, phone, phone)->Apply(asFrame);
BENCHMARK_CAPTURE(keypadFrame, phone, phone)->Apply(asFrame);
BENCHMARK_CAPTURE(pickerScrollFrame, phone, phone)->Apply(asFrame);
BENCHMARK_CAPTURE(pushFrame, phone, phone)->Apply(asFrame)->Iterations(framesOfPushes);
BENCHMARK_CAPTURE(cardFrame, 4K, display4K)->Apply(asFrame);
BENCHMARK_CAPTURE(keypadFrame, 4K, display4K)->Apply(asFrame);
BENCHMARK_CAPTURE(pickerScrollFrame, 4K, display4K)->Apply(asFrame);
BENCHMARK_CAPTURE(pushFrame, 4K, display4K)->Apply(asFrame)->Iterations(framesOfPushes);

void askForLayout(UIView& view) {
    view.setNeedsLayout();
    for (UIView* const subview : view.subviews())
        askForLayout(*subview);
}

/// Lays out every view again and solves all constraints again.
void layOut(benchmark::State& state, Screen& screen) {
    for (auto _ : state) {
        askForLayout(screen.window);
        screen.window.layoutIfNeeded();
    }
}

void cardLayout(benchmark::State& state) {
    Screen screen(phone);
    layOut(state, screen);
}
BENCHMARK(cardLayout)->Unit(benchmark::kMicrosecond);

void keypadLayout(benchmark::State& state) {
    Screen screen(phone);
    screen.tap("albumButton");
    screen.settle();
    layOut(state, screen);
}
BENCHMARK(keypadLayout)->Unit(benchmark::kMicrosecond);

void pickerLayout(benchmark::State& state) {
    Screen screen(phone);
    screen.openPicker();
    layOut(state, screen);
}
BENCHMARK(pickerLayout)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace sela

int main(int argc, char** argv) {
    sela::keepFreedMemory();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QThreadPool::globalInstance()->setMaxThreadCount(1); // as in the program
    const sela::BenchHome home;
    sela::home = home.path();
    sela::savePicture(sela::home + "/picture.png");
    sela::publish();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
