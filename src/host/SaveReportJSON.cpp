#include "host/SaveReportJSON.h"

#include "host/LocalizedReason.h"
#include "platform/foundation/JSONWriter.h"
#include "platform/foundation/NSLog.h"

#include <algorithm>
#include <string_view>

namespace sela {

namespace {

using Kind = AttachmentOutcome::Kind;

std::string_view textOf(Kind kind) {
    switch (kind) {
    case Kind::notTried:
        return "not tried";
    case Kind::recorded:
        return "added";
    case Kind::failed:
        return "failed";
    }
    return {};
}

void write(JSONWriter& writer, const std::string& path, const AttachmentOutcome& outcome) {
    writer.beginObject().member("path", path).member("outcome", std::string(textOf(outcome.kind)));
    if (outcome.reason)
        writer.member("reason", plainReason(*outcome.reason));
    if (outcome.kind == Kind::recorded && outcome.item)
        writer.member("key", outcome.ledgerKey).member("album", outcome.item->albumNames);
    writer.endObject();
}

void write(JSONWriter& writer, const LeftOut& file) {
    writer.beginObject().member("path", file.name).member("outcome", std::string("left out"));
    writer.member("reason", file.reason->localizedFailureReason()).endObject();
}

} // namespace

std::string saveReportJSON(const SaveReport& report) {
    JSONWriter writer;
    writer.beginObject().key("status").integer(static_cast<int>(report.status()));
    writer.member("problem", report.problem).key("files").beginArray();
    // A run that never began has no outcomes, and an attachment that was dropped later has only a name.
    const std::vector<AttachmentOutcome>& outcomes = report.run.outcomes;
    for (std::size_t i = 0; i < std::max(report.names.size(), outcomes.size()); ++i) {
        const AttachmentOutcome outcome = i < outcomes.size() ? outcomes[i] : AttachmentOutcome();
        write(writer, i < report.names.size() ? report.names[i] : outcome.name, outcome);
    }
    for (const LeftOut& file : report.leftOut)
        write(writer, file);
    writer.endArray().endObject();
    // Characters that control a terminal occur only inside strings, where the log's escapes are valid JSON
    // too.
    return escapedForLog(writer.text()) + "\n";
}

} // namespace sela
