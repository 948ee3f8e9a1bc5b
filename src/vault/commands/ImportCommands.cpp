#include "platform/foundation/NSLog.h"
#include "platform/foundation/UTF8.h"
#include "vault/EndingSignals.h"
#include "vault/Import.h"
#include "vault/ImportWatch.h"
#include "vault/KeptLedgers.h"
#include "vault/Listing.h"
#include "vault/commands/Commands.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace sela {

namespace {

/// "2 imported, 1 left", without the numbers that are 0.
std::string summaryOf(const Import::Report& report) {
    std::string text;
    const auto add = [&text](std::size_t count, const std::string& what) {
        if (count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
    };
    add(report.imported.size(), "imported");
    add(report.left.size(), "left");
    add(report.waiting, "waiting");
    add(report.dropped.size(), "dropped");
    add(report.pruned.size(), "removed");
    add(report.unrecorded.size(), "recorded nowhere");
    return text.empty() ? "Nothing to import.\n" : text + "\n";
}

/// Whether an import of many did anything.
bool isWorthTelling(const Import::Report& report) {
    return !report.imported.empty() || !report.isComplete();
}

int tell(const Arguments& arguments, const Import::Report& report) {
    for (const std::string& name : report.unrecorded)
        fail("left in Items, recorded nowhere: " + name);
    for (const std::vector<std::string>* lines : {&report.left, &report.problems})
        for (const std::string& line : *lines)
            fail(line);
    int status = EXIT_SUCCESS;
    if (arguments.has("--json")) {
        status = printJSON([&](JSONWriter& writer) {
            writer.member("imported", report.imported).member("left", report.left);
            writer.key("waiting").integer(static_cast<std::int64_t>(report.waiting));
            writer.member("dropped", report.dropped)
                .member("removed", report.pruned)
                .member("unrecorded", report.unrecorded)
                .member("problems", report.problems);
        });
    } else {
        std::string text;
        for (const std::string& file : report.imported)
            text += escapedForLog(file) + "\n";
        for (const std::string& name : report.dropped)
            text += "dropped, its file is missing: " + escapedForLog(name) + "\n";
        for (const std::string& name : report.pruned)
            text += "removed from Items, recorded nowhere: " + escapedForLog(name) + "\n";
        status = print(text + summaryOf(report));
    }
    return report.isComplete() ? status : EXIT_FAILURE;
}

/// Prints a ledger that could not be read, byte for byte, and then removes it.
int discardLedger(const Arguments& arguments, const std::string& key) {
    const Result<std::string> kept = keptLedger(key);
    if (!kept)
        return fail(kept.error());
    const std::string& text = kept.value();
    const bool isJSON = arguments.has("--json");
    const bool isShown = !isJSON && ::isatty(STDOUT_FILENO);
    if (isJSON ? !isValidUTF8(text) : isShown && escapedForLog(text) != text)
        return fail(
            "this ledger has bytes that cannot be shown here; without --json they can go into a file, "
            "as in > FILE");
    const int status =
        isJSON ? printJSON([&](JSONWriter& writer) { writer.member("discarded", key).member("text", text); })
               : print(text + (isShown ? "\n" : ""));
    if (status != EXIT_SUCCESS)
        return status;
    const ErrorRef error = discardKeptLedger(key);
    return error ? fail(error) : EXIT_SUCCESS;
}

} // namespace

int ledgerCommand(const Arguments& arguments) {
    if (const std::optional<std::string> key = arguments.valueOf("--discard"))
        return discardLedger(arguments, *key);
    return print(arguments.has("--json") ? ledgerJSON() : ledgerTable());
}

int importCommand(const Arguments& arguments) {
    const std::string into = arguments.valueOf("--into").value_or("");
    if (into.empty())
        return misuse("import needs --into FOLDER");
    Import::Options options{.into = URL::fileURL(into),
                            .keep = arguments.has("--keep"),
                            .prune = arguments.has("--prune"),
                            .dropMissing = arguments.has("--drop-missing")};
    if (arguments.has("--watch") && options.keep)
        return misuse("--watch and --keep would copy the same files again and again");
    EndingSignals signals;
    options.isStopped = [&signals] { return signals.haveArrived(); };
    if (arguments.has("--watch")) {
        const ErrorRef error = watchAndImport(signals, [&] {
            Result<Import::Report> report = Import(options).run();
            if (report && isWorthTelling(report.value()))
                tell(arguments, report.value());
            return report;
        });
        return error ? fail(error) : EXIT_SUCCESS;
    }
    if (::isatty(STDERR_FILENO))
        options.progress = [](std::size_t entry, std::size_t count) {
            std::fprintf(stderr, "\r\33[KImporting %zu of %zu", entry, count);
        };
    const Result<Import::Report> report = Import(options).run();
    if (options.progress)
        std::fputs("\r\33[K", stderr);
    return report ? tell(arguments, report.value()) : fail(report.error());
}

} // namespace sela
