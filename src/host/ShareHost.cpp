#include "host/ShareHost.h"

#include "host/MimeAttachments.h"
#include "host/ShareWindow.h"
#include "host/StepRunner.h"
#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/NSLog.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIScreen.h"

#include <QLocale>
#include <QThreadPool>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace sela {

namespace {

/// Seconds between two looks at a save that may hang.
constexpr double watchInterval = 0.1;

/// Seconds after which attachments are loaded even though no frame was shown, as in a window that opens
/// behind others or on another desktop.
constexpr double longestWaitForFrame = 0.5;

/// Whether the QGuiApplication is being made, which Qt gives up with a fatal message and no return.
bool isQtStarting = false;

/// Qt says nothing on standard error, which holds the system's log lines, but why it cannot go on.
void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg)
        return;
    if (!isQtStarting) {
        std::fprintf(stderr, "sela-share: %s\n", escapedForLog(message.toStdString()).c_str());
        return;
    }
    std::fputs(
        "sela-share: the display cannot be opened; look at DISPLAY and WAYLAND_DISPLAY, or use --headless "
        "with steps such as --tap addButton\n",
        stderr);
    std::_Exit(static_cast<int>(ExitStatus::badArguments));
}

/// Sets what must be set before there is a QGuiApplication, or a second thread that reads the environment.
const CommandLine& prepareForQt(const CommandLine& line) {
    isQtStarting = true;
    qInstallMessageHandler(handleQtMessage);
    if (line.headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Among fonts that share characters, as those of Chinese and Japanese do, the language of the texts
    // decides.
    QByteArray language = QByteArray::fromStdString(Bundle::main().preferredLocalization());
    if (!language.isEmpty() && !qEnvironmentVariableIsSet("FC_LANG"))
        qputenv("FC_LANG", language.replace('_', '-'));
    // Fonts have the size that the views ask for, whatever the display says about its resolution.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    return line;
}

/// The arguments of the QGuiApplication, which keeps the references: the program's name alone, since what
/// the user wrote is not for Qt.
int& argumentCountForQt() {
    static int count = 1;
    return count;
}

char** argumentsForQt() {
    static char name[] = "sela-share";
    static char* arguments[] = {name, nullptr};
    return arguments;
}

UIUserInterfaceLayoutDirection layoutDirection() {
    const QLocale locale(QString::fromStdString(Bundle::main().preferredLocalization()));
    return locale.textDirection() == Qt::RightToLeft ? UIUserInterfaceLayoutDirection::rightToLeft
                                                     : UIUserInterfaceLayoutDirection::leftToRight;
}

ErrorRef cancellation(const std::string& why) {
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError, why);
}

ErrorRef userCancellation() {
    return cancellation("The window was closed.");
}

bool isBackgroundAtWork() {
    const std::lock_guard lock(BackgroundWork::mutex());
    return BackgroundWork::outstanding() > 0;
}

} // namespace

ShareHost::ShareHost(const CommandLine& line)
    : line_(prepareForQt(line)), application_(argumentCountForQt(), argumentsForQt()), appearance_(line),
      queue_(line.headless ? static_cast<DispatchQueue&>(headlessLoop_) : windowLoop_), scopedQueue_(queue_),
      painter_(measurer_), window_(ShareWindow::screenSize(line)), notice_(window_) {
    isQtStarting = false;
    // By this the desktop knows whose window it is.
    QGuiApplication::setDesktopFileName(QStringLiteral("xyz.sela.share"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // Qt shares every fill out among these threads; a third of a frame's time went into waking them.
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    fonts_.beginList();
    if (!line.headless)
        NSItemProvider::suspendLoading();
    TextMeasurer::setCurrent(&measurer_);
    UIScreen::main().setScale(line.headless || line.hasScale ? line.scale : application_.devicePixelRatio());
    UIApplication::shared().setUserInterfaceLayoutDirection(layoutDirection());
    followDesktop();
    appearance_.setChangeHandler([this] { followDesktop(); });
}

ShareHost::~ShareHost() {
    NSItemProvider::resumeLoading();
    TextMeasurer::setCurrent(nullptr);
}

void ShareHost::followDesktop() {
    window_.setTraitCollection(appearance_.traitCollection());
    UIAccessibility::setReduceMotionEnabled(appearance_.reducesMotion());
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
            status_ = ExitStatus::stepFailed;
            problem_ = *failure;
            if (context.hasEnded())
                *problem_ += "; the request had ended before";
            else
                context.cancelRequestWithError(cancellation(*failure));
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
    shareWindow_->setContentHandler(
        {[this] { return canGrow(); }, [this](const QMimeData* data) { take(data); }});
    // The helpers' start would take the processors from the card's.
    shareWindow_->setFirstFrameHandler([] { NSItemProvider::resumeLoading(); });
    windowLoop_.asyncAfter(longestWaitForFrame, [] { NSItemProvider::resumeLoading(); });
    shareWindow_->open();
    fonts_.wait();
    takeSteps(context);
    windowLoop_.run();
}

void ShareHost::runHeadless(NSExtensionContext& context) {
    fonts_.wait();
    takeSteps(context);
    headlessLoop_.run();
    if (context.hasEnded() || status_)
        return;
    if (card_.hasAddStarted && card_.hasAddStarted())
        status_ = ExitStatus::cannotEnd;
}

bool ShareHost::canGrow() const {
    return card_.append && !(card_.hasAddStarted && card_.hasAddStarted());
}

void ShareHost::take(const QMimeData* data) {
    if (!canGrow())
        return;
    const MimeAttachments found = MimeAttachments::in(data);
    if (!found.attachments.empty())
        card_.append(found.attachments);
    if (!found.problems.empty())
        notice_.show(Bundle::main().localizedString("Some files cannot be added."));
    else if (found.onlyText)
        notice_.show(Bundle::main().localizedString("Text cannot be added, only files and pictures."));
    else if (found.attachments.empty())
        notice_.show(Bundle::main().localizedString("There is nothing to add on the clipboard."));
}

void ShareHost::endRun() {
    if (shareWindow_)
        shareWindow_->hide();
    if (!line_.headless)
        windowLoop_.finish();
}

/// Ends the run when Add was pressed and nothing is left that could end the request.
void ShareHost::watchForHangingSave() {
    // The end may have come in the same turn of the loop.
    if (status_)
        return;
    const bool canEnd = isBackgroundAtWork() || queue_.pendingTasks() > 0 || !window_.isIdle();
    if (!canEnd && card_.hasAddStarted && card_.hasAddStarted()) {
        status_ = ExitStatus::cannotEnd;
        endRun();
        return;
    }
    windowLoop_.asyncAfter(watchInterval, [this] { watchForHangingSave(); });
}

} // namespace sela
