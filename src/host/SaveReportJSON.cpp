#include "host/SaveReportJSON.h"

#include "platform/foundation/JSONWriter.h"
#include "platform/foundation/NSLog.h"

#include <string_view>

namespace sela {

namespace {

using Kind = AttachmentOutcome::Kind;

std::string_view textOf(ExitStatus status) {
    switch (status) {
    case ExitStatus::completed:
        return "completed";
    case ExitStatus::notAll:
        return "not all";
    case ExitStatus::cancelled:
        return "cancelled";
    case ExitStatus::cannotEnd:
        return "stuck";
    case ExitStatus::badArguments:
        return "refused";
    case ExitStatus::stepFailed:
        return "step failed";
    }
    return {};
}

std::string_view textOf(Kind kind) {
    switch (kind) {
    case Kind::notTried:
        return "not tried";
    case Kind::recorded:
        return "recorded";
    case Kind::failed:
        return "failed";
    }
    return {};
}

void write(JSONWriter& writer, const AttachmentOutcome& outcome) {
    writer.beginObject().member("name", outcome.name).member("outcome", std::string(textOf(outcome.kind)));
    if (outcome.reason)
        writer.member("reason", outcome.reason->localizedFailureReason());
    if (outcome.kind == Kind::recorded && outcome.item) {
        writer.member("key", outcome.ledgerKey).member("album", outcome.item->albumNames);
        writer.member("decoy", outcome.item->fake);
    }
    writer.endObject();
}

} // namespace

std::string saveReportJSON(const SaveReport& report) {
    JSONWriter writer;
    writer.beginObject()
        .member("status", std::string(textOf(report.status())))
        .member("problem", report.problem);
    writer.key("files").beginArray();
    for (const AttachmentOutcome& outcome : report.run.outcomes)
        write(writer, outcome);
    writer.endArray().key("leftOut").beginArray();
    for (const LeftOut& file : report.leftOut)
        writer.string(file.description());
    writer.endArray().endObject();
    // Characters that drive a terminal stand in texts alone, where the escapes of a log are JSON's too.
    return escapedForLog(writer.text()) + "\n";
}

} // namespace sela
