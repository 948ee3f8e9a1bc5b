#include "commandline/Arguments.h"
#include "platform/foundation/Dumpable.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/NSLog.h"
#include "vault/Import.h"
#include "vault/Listing.h"
#include "vault/PasscodeFile.h"
#include "vault/Publishing.h"
#include "vault/VaultOptions.h"

#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sysexits.h>
#include <utility>
#include <vector>

namespace {

using sela::Arguments;

int fail(const std::string& message) {
    std::fprintf(stderr, "sela-vault: %s\n", sela::escapedForLog(message).c_str());
    return EXIT_FAILURE;
}

int fail(const sela::ErrorRef& error) {
    return fail(error->localizedDescription());
}

int misuse(const std::string& message) {
    fail(message);
    std::fputs("Try \"sela-vault --help\".\n", stderr);
    return EX_USAGE;
}

int print(const sela::Result<std::string>& text) {
    if (!text)
        return fail(text.error());
    std::fputs(text.value().c_str(), stdout);
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : fail(std::string("standard output cannot be written"));
}

int init(const Arguments&) {
    const sela::ErrorRef error = sela::provisionGroup();
    return error ? fail(error) : EXIT_SUCCESS;
}

int publish(const Arguments& arguments) {
    if (arguments.operands.size() != 1)
        return misuse("publish takes one catalogue");
    const std::optional<std::string> passcodeFile = arguments.valueOf("--passcode-file");
    const std::optional<std::string> decoyFile = arguments.valueOf("--decoy-passcode-file");
    if (passcodeFile == "-" && decoyFile == "-")
        return misuse("only one passcode can come from standard input");
    sela::Publication publication;
    publication.cataloguePath = arguments.operands.front();
    publication.coversFolder = arguments.valueOf("--covers");
    for (const auto& [file, passcode] :
         {std::pair(passcodeFile, &publication.passcode), std::pair(decoyFile, &publication.decoyPasscode)}) {
        if (!file)
            continue;
        const sela::Result<sela::Secret> read = sela::readPasscode(*file);
        if (!read)
            return fail(read.error());
        *passcode = read.value();
    }
    const sela::Result<sela::PublicationWarnings> warnings = sela::publish(publication);
    if (!warnings)
        return fail(warnings.error());
    for (const std::string& warning : warnings.value())
        fail(warning);
    return EXIT_SUCCESS;
}

int listAlbums(const Arguments&) {
    return print(sela::albumsTable());
}

int listLedger(const Arguments& arguments) {
    return print(arguments.has("--json") ? sela::ledgerJSON() : sela::ledgerTable());
}

int import(const Arguments& arguments) {
    const std::string into = arguments.valueOf("--into").value_or("");
    if (into.empty())
        return misuse("import needs --into FOLDER");
    sela::Import run({.into = sela::URL::fileURL(into),
                      .keep = arguments.has("--keep"),
                      .prune = arguments.has("--prune"),
                      .dropMissing = arguments.has("--drop-missing")});
    const sela::Result<sela::Import::Report> result = run.run();
    if (!result)
        return fail(result.error());
    const sela::Import::Report& report = result.value();
    for (const std::string& file : report.imported)
        std::printf("%s\n", sela::escapedForLog(file).c_str());
    for (const std::string& name : report.dropped)
        std::printf("dropped, its file is missing: %s\n", sela::escapedForLog(name).c_str());
    for (const std::string& name : report.pruned)
        std::printf("removed from Items, recorded nowhere: %s\n", sela::escapedForLog(name).c_str());
    for (const std::string& name : report.unrecorded)
        fail("left in Items, recorded nowhere: " + name);
    for (const std::string& problem : report.problems)
        fail(problem);
    return report.problems.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    sela::makeUndumpable();
    sela::keepFreedMemory();
    // A file that would exceed a limit, or a reader that has gone, is an error of its write.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(077);
    const sela::OptionTable& table = sela::vaultOptions();
    const sela::Result<Arguments> read =
        sela::readArguments(table, std::vector<std::string>(argv + 1, argv + argc));
    if (!read)
        return misuse(read.error()->localizedDescription());
    const Arguments& arguments = read.value();
    if (arguments.has("--help"))
        return print(arguments.command ? sela::helpText(table, *arguments.command) : sela::helpText(table));
    if (arguments.has("--version"))
        return print(std::string("sela-vault " SELA_VERSION "\n"));
    if (!arguments.command)
        return misuse("a command is missing");
    if (arguments.command->operands.empty() && !arguments.operands.empty())
        return misuse(std::string(arguments.command->name) + " takes no \"" + arguments.operands.front() +
                      "\"");
    constexpr std::pair<std::string_view, int (*)(const Arguments&)> actions[] = {{"init", init},
                                                                                  {"publish", publish},
                                                                                  {"albums", listAlbums},
                                                                                  {"ledger", listLedger},
                                                                                  {"import", import}};
    for (const auto& [name, action] : actions)
        if (name == arguments.command->name)
            return action(arguments);
    sela::fatalError("no action for the command " + std::string(arguments.command->name));
}
