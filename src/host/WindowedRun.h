#pragma once

#include "host/Notice.h"
#include "host/QtApplication.h"
#include "host/QtMainLoop.h"
#include "host/ShareSession.h"
#include "host/ShareWindow.h"

#include <memory>

class QMimeData;

namespace sela {

/// The extension in a window of the desktop, which a person uses, beside the command line's steps. What is
/// pasted or dropped joins the request. Main thread only.
class WindowedRun {
public:
    /// `application` must outlive this.
    WindowedRun(QtApplication& application, const CommandLine& line,
                std::shared_ptr<NSExtensionContext> context);

    /// Shows the card and returns when the request has ended and nothing is under way any more. Closing the
    /// window cancels the request. Saving that is stuck ends the run only when there were steps and the last
    /// one was taken.
    RunResult run();

private:
    void take(const QMimeData* data);
    void end();

    QtApplication& application_;
    const CommandLine line_;
    QtMainLoop loop_;
    ShareSession session_;
    Notice notice_;
    ShareWindow window_;
};

} // namespace sela
