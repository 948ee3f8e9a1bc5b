#pragma once

#include "host/Notice.h"
#include "host/QtApplication.h"
#include "host/QtMainLoop.h"
#include "host/ShareSession.h"
#include "host/ShareWindow.h"

class QMimeData;

namespace sela {

/// The extension in a window of the desktop, which a person uses, beside the command line's steps. What is
/// pasted or dropped joins the request. Main thread only.
class WindowedRun {
public:
    /// `application` must outlive this.
    WindowedRun(QtApplication& application, const CommandLine& line, const Attachments& attachments);

    /// Shows the card and returns when the request has ended and nothing is under way any more. Closing the
    /// window cancels the request while something can still be added, and completes it after that. Saving
    /// that is stuck ends the run when the window is closed, or the last of the command line's steps was
    /// taken.
    SaveReport run();

private:
    void close();
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
