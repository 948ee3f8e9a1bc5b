#pragma once

#include "host/ExitStatus.h"
#include "host/ShareRequest.h"
#include "share/SaveRun.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// What a run did with its files. A value.
struct SaveReport {
    /// How the request ended: `completed`, `cancelled`, `cannotEnd` or `stepFailed`; `badArguments` when it
    /// never began.
    ExitStatus end = ExitStatus::cancelled;

    /// Why it ended so, in a line, where the save run does not say it; absent when there is nothing to
    /// report.
    std::optional<std::string> problem;

    SaveRun run;

    /// What was in the request from its start, as it was named, in the order of the run's outcomes.
    std::vector<std::string> names;

    /// What was named, pasted or dropped but is not in the request: first what was from the start.
    std::vector<LeftOut> leftOut;

    /// The exit status of the process: `completed` only when everything was added, `notAll` when a file was
    /// not, `cancelled` when the request was and nothing was added.
    ExitStatus status() const;

    /// Lines for standard error, in English: each file that failed, with the reason, and those that were not
    /// tried. Files that were left out are not among them.
    std::vector<std::string> problems() const;

    /// "3 files added to Family"; empty when none was.
    std::string success() const;

    /// Whether a file was not added that should have been: not one that was cancelled before any was tried.
    bool isIncomplete() const;

    /// The same in short and in the user's language, for the card and for notifications: how many were added,
    /// how many not, and which and why.
    std::string summary() const;
};

} // namespace sela
