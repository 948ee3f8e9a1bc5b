#include "host/SaveReport.h"

#include "host/LocalizedReason.h"
#include "host/ReasonSummary.h"
#include "platform/foundation/Bundle.h"
#include "platform/uikit/NSAttributedString.h"

#include <algorithm>
#include <string_view>

namespace sela {

namespace {

using Kind = AttachmentOutcome::Kind;

/// The most names that are listed of files that were not tried.
constexpr std::int64_t mostNames = 10;

std::string nameOf(const AttachmentOutcome& outcome) {
    return outcome.name.empty() ? "a picture without a name" : outcome.name;
}

/// "a.jpg, b.jpg and 7 more"; empty for none.
std::string notTried(const SaveRun& run) {
    std::string names;
    std::int64_t told = 0;
    for (const AttachmentOutcome& outcome : run.outcomes) {
        if (outcome.kind != Kind::notTried || told == mostNames)
            continue;
        names += (told++ > 0 ? ", " : "") + nameOf(outcome);
    }
    const std::int64_t more = run.count(Kind::notTried) - told;
    return more > 0 ? names + " and " + std::to_string(more) + " more" : names;
}

/// The text of a key whose "%@" is a number.
std::string localized(std::string_view key, std::size_t number) {
    return NSAttributedString(Bundle::main().localizedString(key))
        .format({NSAttributedString(std::to_string(number))})
        .string();
}

} // namespace

ExitStatus SaveReport::status() const {
    const std::int64_t recorded = run.count(Kind::recorded);
    const bool isAll = recorded == static_cast<std::int64_t>(run.outcomes.size()) && leftOut.empty();
    if (end == ExitStatus::completed || (end == ExitStatus::cancelled && recorded > 0))
        return isAll ? ExitStatus::completed : ExitStatus::notAll;
    return end;
}

std::vector<std::string> SaveReport::problems() const {
    std::vector<std::string> lines;
    if (problem)
        lines.push_back(*problem);
    for (const AttachmentOutcome& outcome : run.outcomes) {
        if (outcome.kind != Kind::failed)
            continue;
        lines.push_back(nameOf(outcome) + " was not added: " + plainReason(*outcome.reason));
        if (run.state == SaveRun::State::stuck)
            lines.back() += "; the end of this is never reported, so the request cannot end";
    }
    if (const std::string untried = notTried(run); !untried.empty())
        lines.push_back("not tried: " + untried);
    return lines;
}

std::string SaveReport::success() const {
    const std::int64_t recorded = run.count(Kind::recorded);
    if (recorded == 0)
        return {};
    const std::size_t all = run.outcomes.size() + leftOut.size();
    std::string text = std::to_string(recorded);
    if (recorded < static_cast<std::int64_t>(all))
        text += " of " + std::to_string(all);
    text += all == 1 ? " file added to " : " files added to ";
    const auto first = std::ranges::find(run.outcomes, Kind::recorded, &AttachmentOutcome::kind);
    const char* separator = "";
    for (const std::string& name : first->item->albumNames) {
        text += separator + name;
        separator = "/";
    }
    return text;
}

bool SaveReport::isIncomplete() const {
    const bool isTried = run.count(Kind::recorded) > 0 || run.count(Kind::failed) > 0;
    if (isTried)
        return run.count(Kind::failed) > 0 || run.count(Kind::notTried) > 0 || !leftOut.empty();
    return end == ExitStatus::badArguments && !leftOut.empty();
}

std::string SaveReport::summary() const {
    const auto recorded = static_cast<std::size_t>(run.count(Kind::recorded));
    const std::size_t missing = run.outcomes.size() - recorded + leftOut.size();
    std::string text = localized("Added: %@", recorded);
    if (missing > 0)
        text += "\n" + localized("Not added: %@", missing);
    ReasonSummary reasons;
    for (const LeftOut& file : leftOut)
        reasons.add(file.shortName(), localizedReason(*file.reason));
    for (const AttachmentOutcome& outcome : run.outcomes)
        if (outcome.kind == Kind::failed)
            reasons.add(outcome.name, localizedReason(*outcome.reason));
    for (const AttachmentOutcome& outcome : run.outcomes)
        if (outcome.kind == Kind::notTried && !outcome.name.empty())
            reasons.add(outcome.name, {});
    if (const std::string lines = reasons.text(); !lines.empty())
        text += "\n" + lines;
    return text;
}

} // namespace sela
