#include "commandline/PasscodeFile.h"
#include "platform/foundation/NSLog.h"
#include "vault/Doctor.h"
#include "vault/Publishing.h"
#include "vault/commands/Commands.h"

#include <cstdlib>
#include <utility>

namespace sela {

namespace {

int publishAndTell(const Arguments& arguments, const Publication& publication, const std::string& done) {
    const Result<PublicationWarnings> warnings = publish(publication);
    if (!warnings)
        return fail(warnings.error());
    for (const std::string& warning : warnings.value())
        fail(warning);
    if (!arguments.has("--json"))
        return print(done);
    return printJSON([&](JSONWriter& writer) { writer.member("warnings", warnings.value()); });
}

} // namespace

int initCommand(const Arguments& arguments) {
    const Result<ProvisionedGroup> group = provisionGroup();
    if (!group)
        return fail(group.error());
    const ProvisionedGroup& made = group.value();
    if (arguments.has("--json"))
        return printJSON([&](JSONWriter& writer) {
            writer.member("container", made.container).member("new", made.isNew);
        });
    if (!made.isNew)
        return print("There is a vault already: " + escapedForLog(made.container) + "\n");
    return print("Made a vault: " + escapedForLog(made.container) +
                 "\nWhat to do next:\n"
                 "  sela-vault passcode set      the passcode that shows your albums\n"
                 "  sela-vault album add Trips   albums to add to\n");
}

int publishCommand(const Arguments& arguments) {
    const std::optional<std::string> passcodeFile = arguments.valueOf("--passcode-file");
    const std::optional<std::string> decoyFile = arguments.valueOf("--decoy-passcode-file");
    if (passcodeFile == "-" && decoyFile == "-")
        return misuse("only one passcode can come from standard input");
    Publication publication;
    publication.cataloguePath = arguments.operands.front();
    publication.coversFolder = arguments.valueOf("--covers");
    publication.checkOnly = arguments.has("--check");
    for (const auto& [file, passcode] :
         {std::pair(passcodeFile, &publication.passcode), std::pair(decoyFile, &publication.decoyPasscode)}) {
        if (!file)
            continue;
        const Result<Secret> read = readPasscode(*file);
        if (!read)
            return fail(*file + ": " + read.error()->localizedFailureReason());
        *passcode = read.value();
    }
    return publishAndTell(arguments, publication, "");
}

int passcodeSetCommand(const Arguments& arguments) {
    const bool decoy = arguments.has("--decoy");
    const std::optional<std::string> file = arguments.valueOf("--file");
    const Result<Secret> passcode =
        file ? readPasscode(*file) : askForNewPasscode(decoy ? "New decoy passcode" : "New passcode");
    if (!passcode)
        return fail(file.value_or("passcode") + ": " + passcode.error()->localizedFailureReason());
    Publication publication;
    (decoy ? publication.decoyPasscode : publication.passcode) = passcode.value();
    return publishAndTell(arguments, publication,
                          decoy ? "The decoy passcode is set.\n" : "The passcode is set.\n");
}

int passcodeClearCommand(const Arguments& arguments) {
    if (!arguments.has("--decoy"))
        return misuse(
            "only the decoy passcode can be cleared; a vault without a passcode shows its albums to nobody");
    if (const ErrorRef error = clearDecoyPasscode())
        return fail(error);
    if (arguments.has("--json"))
        return printJSON([](JSONWriter& writer) { writer.key("warnings").beginArray().endArray(); });
    return print(std::string("There is no decoy passcode any more.\n"));
}

int doctorCommand(const Arguments& arguments) {
    const Result<std::vector<Finding>> findings = examineGroup(arguments.has("--mend"));
    if (!findings)
        return fail(findings.error());
    bool isWell = true;
    std::string text;
    for (const Finding& finding : findings.value()) {
        isWell = isWell && finding.state == Finding::State::mended;
        text += escapedForLog(finding.text);
        text += finding.state == Finding::State::mended     ? " (mended)\n"
                : finding.state == Finding::State::mendable ? " (--mend mends it)\n"
                                                            : "\n";
    }
    const int printed = arguments.has("--json") ? printJSON([&](JSONWriter& writer) {
        writer.key("findings").beginArray();
        for (const Finding& finding : findings.value())
            writer.beginObject()
                .member("text", finding.text)
                .member("mendable", finding.state != Finding::State::forTheUser)
                .member("mended", finding.state == Finding::State::mended)
                .endObject();
        writer.endArray();
    })
                                                : print(text.empty() ? "All is well.\n" : text);
    return printed != EXIT_SUCCESS || isWell ? printed : EXIT_FAILURE;
}

} // namespace sela
