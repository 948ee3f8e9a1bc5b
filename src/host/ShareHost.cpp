#include "host/ShareHost.h"

#include "host/ShareWindow.h"
#include "host/StepRunner.h"
#include "platform/foundation/BackgroundWork.h"
#include "platform/uikit/UIScreen.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace sela {

namespace {

/// Seconds between two looks at a save that may hang.
constexpr double watchInterval = 0.1;

/// Qt says nothing on standard error, which holds the system's log lines, but why it cannot start.
void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg)
        std::fprintf(stderr, "sela-share: %s\n", qPrintable(message));
}

/// The arguments of the QGuiApplication, which keeps the references: the program's name alone, since what
/// the user wrote is not for Qt. Prepares what must be set before.
int& argumentCountForQt(const CommandLine& line) {
    static int count = 1;
    qInstallMessageHandler(handleQtMessage);
    if (line.headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Fonts have the size that the views ask for, whatever the display says about its resolution.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    return count;
}

char** argumentsForQt() {
    static char name[] = "sela-share";
    static char* arguments[] = {name, nullptr};
    return arguments;
}

ErrorRef userCancellation() {
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError, "The window was closed.");
}

bool isBackgroundAtWork() {
    const std::lock_guard lock(BackgroundWork::mutex());
    return BackgroundWork::outstanding() > 0;
}

} // namespace

ShareHost::ShareHost(const CommandLine& line)
    : line_(line), application_(argumentCountForQt(line), argumentsForQt()),
      queue_(line.headless ? static_cast<DispatchQueue&>(headlessLoop_) : windowLoop_), scopedQueue_(queue_),
      painter_(measurer_), window_(ShareWindow::screenSize(line)) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    TextMeasurer::setCurrent(&measurer_);
    UIScreen::main().setScale(line.headless || line.hasScale ? line.scale : application_.devicePixelRatio());
    window_.setUserInterfaceStyle(ShareWindow::appearance(line));
}

ShareHost::~ShareHost() {
    TextMeasurer::setCurrent(nullptr);
}

ExitStatus ShareHost::run(Card card, NSExtensionContext& context) {
    card_ = std::move(card);
    context.onEnd = [this](const ErrorRef& cancellation) {
        if (steps_)
            steps_->requestEnded();
        if (!status_)
            status_ = cancellation ? ExitStatus::cancelled : ExitStatus::completed;
        endRun();
    };
    window_.setRootViewController(card_.root);
    if (line_.headless)
        runHeadless(context);
    else
        runWindow(context);
    if (!context.hasEnded() && status_ != ExitStatus::cannotEnd)
        context.cancelRequestWithError(userCancellation());
    context.onEnd = {};
    return status_.value_or(ExitStatus::cancelled);
}

void ShareHost::takeSteps(NSExtensionContext& context) {
    if (line_.steps.empty())
        return;
    const double pixelsPerPoint =
        shareWindow_ && !line_.hasScale ? shareWindow_->pixelsPerPoint() : line_.scale;
    steps_ = std::make_unique<StepRunner>(
        StepRunner::Screen{window_, painter_, pixelsPerPoint, queue_, card_.areImagesShown}, line_.steps);
    steps_->start([this, &context](const std::optional<std::string>& failure) {
        if (failure) {
            std::fprintf(stderr, "sela-share: %s\n", failure->c_str());
            status_ = ExitStatus::stepFailed;
            endRun();
        } else if (!context.hasEnded() && shareWindow_) {
            watchForHangingSave();
        }
    });
}

void ShareHost::runWindow(NSExtensionContext& context) {
    shareWindow_ = std::make_unique<ShareWindow>(window_, painter_, line_);
    shareWindow_->setCloseHandler([&context] {
        if (!context.hasEnded())
            context.cancelRequestWithError(userCancellation());
    });
    shareWindow_->open();
    takeSteps(context);
    windowLoop_.run();
}

void ShareHost::runHeadless(NSExtensionContext& context) {
    takeSteps(context);
    headlessLoop_.run();
    if (context.hasEnded() || status_)
        return;
    if (card_.hasAddStarted && card_.hasAddStarted())
        status_ = ExitStatus::cannotEnd;
}

void ShareHost::endRun() {
    if (shareWindow_)
        shareWindow_->hide();
    if (!line_.headless)
        windowLoop_.finish();
}

/// Ends the run when Add was pressed and nothing is left that could end the request.
void ShareHost::watchForHangingSave() {
    const bool canEnd = isBackgroundAtWork() || queue_.pendingTasks() > 0 || !window_.isIdle();
    if (!canEnd && card_.hasAddStarted && card_.hasAddStarted()) {
        status_ = ExitStatus::cannotEnd;
        endRun();
        return;
    }
    if (!status_)
        windowLoop_.asyncAfter(watchInterval, [this] { watchForHangingSave(); });
}

} // namespace sela
