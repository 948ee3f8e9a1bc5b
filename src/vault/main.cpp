#include "platform/foundation/Dumpable.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/NSLog.h"
#include "vault/Import.h"
#include "vault/Listing.h"
#include "vault/PasscodeFile.h"
#include "vault/Publishing.h"

#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sysexits.h>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

constexpr const char* usage = R"(Usage: sela-vault COMMAND

The companion of the main application: shares its group with sela-share.

  init                              make the group's container
  publish CATALOGUE.json            publish albums for sela-share to offer
      [--passcode-file F]           the vault passcode, from a file or from - (standard input)
      [--decoy-passcode-file F]     the decoy passcode
      [--covers DIR]                the folder with the albums' covers
  albums                            list the published albums
  ledger [--json]                   list what was shared and waits for the import
  import --into DIR                 move what was shared into DIR/vault and DIR/decoy
      [--keep]                      copy, and leave the ledger as it is
      [--prune]                     remove files that no entry knows, a day after they were left

Exit status:
  0    done
  1    something could not be done; standard error says what
  64   bad arguments
)";

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

/// Takes an option, and its value where it has one, out of the arguments.
bool takeFlag(Arguments& arguments, const std::string& flag) {
    return std::erase(arguments, flag) > 0;
}

std::optional<std::string> takeOption(Arguments& arguments, const std::string& option) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] != option)
            continue;
        const std::string value = arguments[i + 1];
        const auto start = arguments.begin() + static_cast<std::ptrdiff_t>(i);
        arguments.erase(start, start + 2);
        return value;
    }
    return std::nullopt;
}

int init(const Arguments& arguments) {
    if (!arguments.empty())
        return misuse("init takes no arguments");
    const sela::ErrorRef error = sela::provisionGroup();
    return error ? fail(error) : EXIT_SUCCESS;
}

int publish(Arguments arguments) {
    sela::Publication publication;
    const std::optional<std::string> passcodeFile = takeOption(arguments, "--passcode-file");
    const std::optional<std::string> decoyFile = takeOption(arguments, "--decoy-passcode-file");
    publication.coversFolder = takeOption(arguments, "--covers");
    if (arguments.size() != 1 || arguments.front().starts_with("--"))
        return misuse("publish takes one catalogue");
    if (passcodeFile == "-" && decoyFile == "-")
        return misuse("only one passcode can come from standard input");
    publication.cataloguePath = arguments.front();
    for (const auto& [file, passcode] :
         {std::pair(passcodeFile, &publication.passcode), std::pair(decoyFile, &publication.decoyPasscode)}) {
        if (!file)
            continue;
        const sela::Result<std::string> read = sela::readPasscode(*file);
        if (!read)
            return fail(*file + ": " + read.error()->localizedDescription());
        *passcode = read.value();
    }
    std::vector<std::string> warnings;
    const sela::ErrorRef error = sela::publish(publication, warnings);
    for (const std::string& warning : warnings)
        fail(warning);
    return error ? fail(error) : EXIT_SUCCESS;
}

int listLedger(Arguments arguments) {
    const bool json = takeFlag(arguments, "--json");
    if (!arguments.empty())
        return misuse("ledger takes --json only");
    return print(json ? sela::ledgerJSON() : sela::ledgerTable());
}

int import(Arguments arguments) {
    const std::optional<std::string> into = takeOption(arguments, "--into");
    const bool keep = takeFlag(arguments, "--keep");
    const bool prune = takeFlag(arguments, "--prune");
    if (!into || into->empty() || !arguments.empty())
        return misuse("import needs --into DIR");
    sela::Import run({sela::URL::fileURL(*into), keep, prune});
    const sela::Result<sela::Import::Report> result = run.run();
    if (!result)
        return fail(result.error());
    const sela::Import::Report& report = result.value();
    for (const std::string& file : report.imported)
        std::printf("%s\n", sela::escapedForLog(file).c_str());
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
    Arguments arguments(argv + 1, argv + argc);
    if (arguments.empty())
        return misuse("a command is missing");
    const std::string command = arguments.front();
    arguments.erase(arguments.begin());
    if (command == "--help" || command == "-h" || command == "help")
        return print(std::string(usage));
    if (command == "init")
        return init(arguments);
    if (command == "publish")
        return publish(arguments);
    if (command == "albums")
        return arguments.empty() ? print(sela::albumsTable()) : misuse("albums takes no arguments");
    if (command == "ledger")
        return listLedger(arguments);
    if (command == "import")
        return import(arguments);
    return misuse("there is no command \"" + command + "\"");
}
