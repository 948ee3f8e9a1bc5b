#pragma once

#include "host/CommandLine.h"
#include "host/DesktopAppearance.h"
#include "host/ExitStatus.h"
#include "host/FontPreparation.h"
#include "host/Notice.h"
#include "host/ObservedMainQueue.h"
#include "host/QtMainLoop.h"
#include "host/QtTextMeasurer.h"
#include "host/ViewPainter.h"
#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSExtensionItem.h"
#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIWindow.h"

#include <QGuiApplication>

#include <functional>
#include <memory>
#include <optional>
#include <string>

class QMimeData;

namespace sela {

class ShareWindow;
class StepRunner;

/// Everything around the extension in its process: Qt, the main queue, the fonts, and the window that its
/// screen is shown in (or, headless, only kept in memory). One at a time, on the main thread; the main queue
/// and the screen's size are there from construction on.
class ShareHost {
public:
    /// The extension's entry screen, and what the host must know about it; either question may be empty.
    struct Card {
        std::shared_ptr<UIViewController> root;

        /// Whether thumbnails and covers that are on their way are shown (empty: yes).
        std::function<bool()> areImagesShown;

        /// Puts what the user pastes or drops into the request; false once that cannot grow any more (empty:
        /// it never can).
        std::function<bool(const NSExtensionItem::Attachments&)> append;

        /// Whether the user has pressed Add, so that only the end of saving ends the request (empty: no).
        std::function<bool()> hasAddStarted;
    };

    /// Ends the process with `badArguments`, and a line on standard error, when the display cannot be opened.
    explicit ShareHost(const CommandLine& line);
    ~ShareHost();
    ShareHost(const ShareHost&) = delete;
    ShareHost& operator=(const ShareHost&) = delete;

    /// Shows the card, takes the command line's steps and returns when the request has ended and nothing is
    /// under way any more. Closing the window cancels the request. Without a window a request that nothing
    /// will end is cancelled, unless saving hangs; that, here or after the last step in a window, gives
    /// `cannotEnd`. A step that fails is told by `problem`, and the request is cancelled at once: only the
    /// file that is under way is still added.
    ExitStatus run(Card card, NSExtensionContext& context);

    /// The step that failed and why, in a line; absent when none did.
    const std::optional<std::string>& problem() const { return problem_; }

private:
    void followDesktop();
    void takeSteps(NSExtensionContext& context);
    void runWindow(NSExtensionContext& context);
    void runHeadless(NSExtensionContext& context);
    bool canGrow() const;
    void take(const QMimeData* data);
    void endRun();
    void watchForHangingSave();

    const CommandLine line_;
    FontPreparation fonts_;
    QGuiApplication application_;
    DesktopAppearance appearance_;
    HeadlessMainLoop headlessLoop_;
    QtMainLoop windowLoop_;
    ObservedMainQueue queue_;
    ScopedMainQueue scopedQueue_;
    QtTextMeasurer measurer_;
    ViewPainter painter_;
    UIWindow window_;
    Notice notice_;
    Card card_;
    std::unique_ptr<ShareWindow> shareWindow_;
    std::unique_ptr<StepRunner> steps_;
    std::optional<ExitStatus> status_;
    std::optional<std::string> problem_;
};

} // namespace sela
