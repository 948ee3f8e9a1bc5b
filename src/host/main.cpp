#include "host/AlbumSteps.h"
#include "host/CommandLine.h"
#include "host/DesktopNotification.h"
#include "host/HeadlessRun.h"
#include "host/MimeAttachments.h"
#include "host/SaveReport.h"
#include "host/SaveReportJSON.h"
#include "host/ShareOptions.h"
#include "host/ShareRequest.h"
#include "host/ShareWindow.h"
#include "host/TypedDigits.h"
#include "host/VaultState.h"
#include "host/WindowedRun.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Dumpable.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/LogOutput.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/StandardStreams.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"

#include <QClipboard>
#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

/// About the size of the heap when the card is first shown.
constexpr std::size_t heapOfFirstFrame = 4 << 20;

void tell(const std::string& message) {
    sela::printToStandardError("sela-share: " + sela::escapedForLog(message));
}

int fail(sela::ExitStatus status, const std::string& message) {
    tell(message);
    return static_cast<int>(status);
}

int misuse(const std::string& message) {
    const int status = fail(sela::ExitStatus::badArguments, message);
    std::fputs("Try \"sela-share --help\".\n", stderr);
    return status;
}

/// Prints on standard output and returns `status`, unless that fails.
int print(const std::string& text, sela::ExitStatus status) {
    if (std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0)
        return static_cast<int>(status);
    return fail(sela::ExitStatus::cannotPrint, "standard output cannot be written");
}

bool hasDisplay() {
    return std::getenv("WAYLAND_DISPLAY") || std::getenv("DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

/// Prints on standard error what became of the files; on success only on a terminal.
void tell(const sela::SaveReport& report, const sela::CommandLine& line) {
    const std::vector<std::string> problems = report.problems();
    for (const std::string& problem : problems)
        tell(problem);
    const bool isWanted =
        line.output != sela::CommandLine::Output::quiet && (::isatty(STDERR_FILENO) || !problems.empty());
    if (const std::string success = report.success(); isWanted && !success.empty())
        tell(success);
}

/// Shows a notification of what the user would not notice otherwise: files that were not added when standard
/// error is not a terminal, and the end of a run whose window was put aside.
void notify(const sela::SaveReport& report, const sela::CommandLine& line, bool wasPutAside) {
    const bool isUnseen = report.isIncomplete() && !::isatty(STDERR_FILENO);
    if (line.output != sela::CommandLine::Output::quiet && (isUnseen || wasPutAside))
        sela::showDesktopNotification("Sela", report.summary());
}

/// What is on the clipboard.
sela::Attachments pastedAttachments() {
    sela::MimeAttachments pasted = sela::MimeAttachments::in(QGuiApplication::clipboard()->mimeData());
    if (pasted.attachments.isEmpty())
        pasted.attachments.problems.push_back(
            {"the clipboard", sela::ShareExtensionError::make(
                                  pasted.onlyText ? "it holds text; only files and pictures can be added"
                                                  : "there is nothing on it that can be added")});
    return std::move(pasted.attachments);
}

/// Tells what became of the files where the command line wants it told; returns the exit status.
int finish(const sela::SaveReport& report, const sela::CommandLine& line, bool wasPutAside = false) {
    tell(report, line);
    notify(report, line, wasPutAside);
    return line.json ? print(sela::saveReportJSON(report), report.status())
                     : static_cast<int>(report.status());
}

/// Why the request cannot begin, with the exit status; absent when it can.
std::optional<sela::SaveReport> obstacle(const sela::Attachments& attachments,
                                         const sela::CommandLine& line) {
    sela::SaveReport report;
    report.names = attachments.names;
    report.leftOut = attachments.problems;
    if (attachments.providers.empty() && !attachments.problems.empty()) {
        report.end = sela::ExitStatus::badArguments;
        return report;
    }
    if (const sela::ErrorRef problem = line.album ? sela::problemWithVault(*line.album) : nullptr) {
        report.end = sela::ExitStatus::stepFailed;
        report.problem = problem->localizedDescription();
        return report;
    }
    return std::nullopt;
}

int share(const sela::CommandLine& line) {
    if (!line.headless && !hasDisplay()) {
        sela::SaveReport report;
        report.end = sela::ExitStatus::badArguments;
        report.problem = "there is no display; use --headless with steps such as --tap addButton";
        report.names = line.attachments;
        return finish(report, line);
    }
    sela::Attachments attachments = sela::attachmentsOf(line.attachments);
    sela::QtApplication application(line);
    if (line.paste && sela::ShareWindow::isClipboardOpen())
        attachments.append(pastedAttachments());
    for (const sela::LeftOut& problem : attachments.problems)
        tell(problem.description());
    if (const std::optional<sela::SaveReport> report = obstacle(attachments, line))
        return finish(*report, line);
    // The card opens all the same: the picker says so too, and the log has the failure of each file.
    if (!sela::sharedFolderUrl())
        tell(std::string(sela::noVaultText));
    const auto finishRun = [&](const sela::SaveReport& report, bool wasPutAside) {
        for (std::size_t i = attachments.problems.size(); i < report.leftOut.size(); ++i)
            tell(report.leftOut[i].description());
        return finish(report, line, wasPutAside);
    };
    if (line.headless) {
        // The run is destroyed, and its line on the terminal erased, before anything is printed.
        const sela::SaveReport report = sela::HeadlessRun(application, line, attachments).run();
        return finishRun(report, false);
    }
    sela::WindowedRun run(application, line, attachments);
    const sela::SaveReport report = run.run();
    return finishRun(report, run.wasPutAside());
}

/// Copies the arguments and overwrites the digits among them, so that other users cannot read those.
std::vector<std::string> takeArguments(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    sela::overwriteTypedDigits(argc, argv);
    return words;
}

} // namespace

int main(int argc, char** argv) {
    sela::openStandardStreams();
    sela::makeUndumpable();
    sela::keepFreedMemory();
    sela::growHeap(heapOfFirstFrame);
    // Exceeding the file size limit is an error of the write, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    // Pictures of the screen show albums; all files, a library's included, are for the user only.
    ::umask(077);
    sela::Bundle::main();
    const auto parsed = sela::CommandLine::parse(takeArguments(argc, argv));
    if (!parsed)
        return misuse(parsed.error()->localizedDescription());
    sela::CommandLine line = parsed.value();
    if (line.help)
        return print(sela::helpText(sela::shareOptions()), sela::ExitStatus::completed);
    if (line.version)
        return print("sela-share " SELA_VERSION "\n", sela::ExitStatus::completed);
    if (line.album) {
        const sela::Result<std::vector<sela::Step>> steps = sela::stepsToAlbum(line);
        if (!steps)
            return misuse(steps.error()->localizedDescription());
        line.steps = steps.value();
    }
    if (const sela::ErrorRef error = sela::readTypedFiles(line.steps))
        return misuse(error->localizedDescription());
    return share(line);
}
