#include "host/ReasonSummary.h"
#include "host/SaveReport.h"
#include "store/ShareExtensionError.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace sela {

using testing::ElementsAre;
using Kind = AttachmentOutcome::Kind;

TEST(SaveReport, TellsTheStatusAndWhatWasAddedByWhatBecameOfEachFile) {
    AttachmentOutcome added, failed, untried;
    added.kind = Kind::recorded;
    added.item = SharedItem{"1a.jpg", {"Trips", "Rome"}, false, "a.jpg"};
    failed.kind = Kind::failed;
    failed.reason = NSError::posix(ENOSPC, "write");
    untried.name = "c.jpg";
    const struct {
        ExitStatus end;
        std::vector<AttachmentOutcome> outcomes;
        std::size_t leftOut;
        ExitStatus status;
        const char* success;
    } cases[] = {
        {ExitStatus::completed, {}, 0, ExitStatus::completed, ""},
        {ExitStatus::completed, {added, added}, 0, ExitStatus::completed, "2 files added to Trips/Rome"},
        {ExitStatus::completed, {added}, 1, ExitStatus::notAll, "1 of 2 files added to Trips/Rome"},
        {ExitStatus::completed, {failed}, 0, ExitStatus::notAll, ""},
        {ExitStatus::cancelled, {}, 0, ExitStatus::cancelled, ""},
        {ExitStatus::cancelled, {failed, untried}, 0, ExitStatus::cancelled, ""},
        {ExitStatus::cancelled, {added, untried}, 0, ExitStatus::notAll, "1 of 2 files added to Trips/Rome"},
        // Cancelled when the last file had just been added.
        {ExitStatus::cancelled, {added}, 0, ExitStatus::completed, "1 file added to Trips/Rome"},
        {ExitStatus::cannotEnd,
         {added, failed},
         0,
         ExitStatus::cannotEnd,
         "1 of 2 files added to Trips/Rome"},
        {ExitStatus::stepFailed, {added}, 0, ExitStatus::stepFailed, "1 file added to Trips/Rome"},
    };
    for (const auto& [end, outcomes, leftOut, status, success] : cases) {
        SaveReport report;
        report.end = end;
        report.run.outcomes = outcomes;
        report.leftOut.resize(leftOut);
        EXPECT_EQ(report.status(), status) << success;
        EXPECT_EQ(report.success(), success);
    }
    SaveReport report;
    report.run.outcomes = {added, failed, untried};
    EXPECT_THAT(
        report.problems(),
        ElementsAre("a picture without a name was not added: No space left on device", "not tried: c.jpg"));
}

TEST(SaveReport, SumsUpReasonsInFewLines) {
    ReasonSummary reasons;
    EXPECT_EQ(reasons.text(), "");
    reasons.add("", "damaged");
    EXPECT_EQ(reasons.text(), "damaged");
    reasons = {};
    reasons.add("a.txt", "no picture");
    reasons.add("Zeugnisse für das Amt 2024–25.txt", "empty");
    for (const char* name : {"b.txt", "a name of twenty-seven c.txt", "d.txt", "e.txt"})
        reasons.add(name, "no picture");
    reasons.add("f.jpg", "");
    reasons.add("", "no picture");
    EXPECT_EQ(reasons.text(), "a.txt, b.txt, a name of twen…-seven c.txt, … + 3: no picture\n"
                              "Zeugnisse für … 2024–25.txt: empty\nf.jpg");
    reasons.add("g.jpg", "gone");
    EXPECT_TRUE(reasons.text().ends_with("\nf.jpg\n… + 1"));
}

} // namespace sela
