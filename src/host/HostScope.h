#pragma once

#include "host/CardPlacement.h"
#include "host/CommandLine.h"
#include "host/DesktopAppearance.h"
#include "host/LoadingGate.h"
#include "host/ObservedMainQueue.h"
#include "host/QtTextMeasurer.h"
#include "host/ViewPainter.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIWindow.h"

namespace sela {

/// The process-wide state that the extension's screens need, set for as long as this object lives: the main
/// queue, the measurer of text, the screen and the direction of its layout, the desktop's appearance and
/// accessibility, whether the log is printed, and the gate of loading. One at a time, on the main thread,
/// while a `QtApplication` exists; all of it is removed at its end.
class HostScope {
public:
    /// `loop` becomes the main queue and must outlive this. With a window attachments are loaded only once
    /// `loading` is opened.
    HostScope(const CommandLine& line, DispatchQueue& loop);
    ~HostScope();
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

    ObservedMainQueue& queue() { return queue_; }
    ViewPainter& painter() { return painter_; }
    const CardPlacement& placement() const { return placement_; }
    UIWindow& window() { return window_; }
    LoadingGate& loading() { return loading_; }

private:
    void followDesktop();

    ObservedMainQueue queue_;
    ScopedMainQueue scopedQueue_;

    /// Destroyed after the screens in the window, so that work that it lets through finds them destroyed.
    LoadingGate loading_;

    QtTextMeasurer measurer_;
    ViewPainter painter_;
    DesktopAppearance appearance_;
    const CardPlacement placement_;
    UIWindow window_;
};

} // namespace sela
