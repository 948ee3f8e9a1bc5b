#pragma once

#include "host/Notice.h"
#include "host/QtApplication.h"
#include "host/QtMainLoop.h"
#include "host/ShareSession.h"
#include "host/ShareWindow.h"

#include <cstdint>

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

    /// Whether the window was put aside while saving went on, so that nobody saw the end.
    bool wasPutAside() const { return isAside_; }

private:
    void showNextStep();
    void close();
    void leave();
    void take(const QMimeData* data);
    void showSaving(const SaveRun& run);
    void showProgress(const SaveRun& run);
    void showEnd();
    void putAside();
    void requestEnded();
    void finish();

    /// Whether saving has gone on for so long that nobody should be kept from the desktop by it.
    bool isSavingForLong() const;

    QtApplication& application_;
    const CommandLine line_;
    std::int64_t totalSize_; ///< of the files, in bytes, as far as it is known
    QtMainLoop loop_;
    ShareSession session_;
    Notice notice_;
    ShareWindow window_;
    double savingStart_ = 0; ///< by the loop's clock; 0 before the first attachment
    bool endsWhenStuck_ = false;
    bool isAside_ = false;
    bool isEndShown_ = false;
    bool isOutcomeRead_ = true; ///< false while a notice says what was not added
};

} // namespace sela
