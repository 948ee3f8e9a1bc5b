#include "host/CommandLine.h"
#include "host/HeadlessRun.h"
#include "host/MimeAttachments.h"
#include "host/ShareOptions.h"
#include "host/ShareRequest.h"
#include "host/ShareWindow.h"
#include "host/WindowedRun.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Dumpable.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/NSLog.h"
#include "store/SharedFolder.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <variant>
#include <vector>

namespace {

/// About what the heap holds when the card is first shown.
constexpr std::size_t heapOfFirstFrame = 4 << 20;

void tell(const std::string& message) {
    std::fprintf(stderr, "sela-share: %s\n", sela::escapedForLog(message).c_str());
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

bool hasDisplay() {
    return std::getenv("WAYLAND_DISPLAY") || std::getenv("DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

/// Tells on standard error what a run did not do.
void tellProblems(const sela::RunResult& result) {
    const sela::SaveRun& run = result.saveRun;
    const std::size_t count = run.outcomes.size();
    const auto problem = std::ranges::find(run.outcomes, sela::AttachmentOutcome::Kind::failed,
                                           &sela::AttachmentOutcome::kind);
    if (result.problem)
        tell(*result.problem);
    if (result.status == sela::ExitStatus::cancelled || problem == run.outcomes.end())
        return;
    const std::size_t index = static_cast<std::size_t>(problem - run.outcomes.begin());
    const std::string place = "file " + std::to_string(index + 1) + " of " + std::to_string(count);
    const std::string reason = problem->reason->localizedDescription();
    if (result.status == sela::ExitStatus::cannotEnd)
        tell(place + " will never be reported as saved, so the request cannot end: " + reason);
    else
        tell(place + " was not added: " + reason +
             (index + 1 < count ? "; those after it were not tried" : ""));
}

/// Why the clipboard gives nothing to share; absent when it does.
std::optional<std::string> problemWith(const sela::MimeAttachments& pasted) {
    if (!pasted.problems.empty())
        return pasted.problems.front();
    if (pasted.onlyText)
        return "the clipboard holds text; only files and pictures can be added";
    if (pasted.attachments.empty())
        return "there is nothing on the clipboard that can be added";
    return std::nullopt;
}

int share(const sela::CommandLine& line) {
    if (!line.headless && !hasDisplay())
        return fail(sela::ExitStatus::badArguments, "there is no display; use --headless with steps such as "
                                                    "--tap addButton");
    const auto request = sela::makeShareRequest(line.attachments);
    if (const auto* const problems = std::get_if<std::vector<std::string>>(&request)) {
        for (const std::string& problem : *problems)
            fail(sela::ExitStatus::badArguments, problem);
        return static_cast<int>(sela::ExitStatus::badArguments);
    }
    // The card opens all the same: the picker says so too, and the log what it means for each file.
    if (!sela::sharedFolderUrl())
        tell("there is no vault to add to yet; start the main Sela application once, or run \"sela-vault "
             "init\"");
    const auto context = std::get<0>(request);
    sela::QtApplication application(line);
    if (line.paste && sela::ShareWindow::isClipboardOpen()) {
        const sela::MimeAttachments pasted =
            sela::MimeAttachments::in(QGuiApplication::clipboard()->mimeData());
        if (const std::optional<std::string> problem = problemWith(pasted))
            return fail(sela::ExitStatus::badArguments, *problem);
        static_cast<sela::NSExtensionItem&>(*context->inputItems.front()).append(pasted.attachments);
    }
    const sela::RunResult result =
        line.headless
            ? sela::HeadlessRun(application, line, context, sela::sizeOfFiles(line.attachments)).run()
            : sela::WindowedRun(application, line, context).run();
    tellProblems(result);
    return static_cast<int>(result.status);
}

} // namespace

int main(int argc, char** argv) {
    sela::makeUndumpable();
    sela::keepFreedMemory();
    sela::growHeap(heapOfFirstFrame);
    // A file that would exceed a limit is an error of its write, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    // Pictures of the screen show albums; whatever is made, here or by a library, is for the user alone.
    ::umask(077);
    sela::Bundle::main();
    const auto parsed = sela::CommandLine::parse(std::vector<std::string>(argv + 1, argv + argc));
    if (!parsed)
        return misuse(parsed.error()->localizedDescription());
    const sela::CommandLine& line = parsed.value();
    if (line.help)
        return std::fputs(sela::helpText(sela::shareOptions()).c_str(), stdout) < 0;
    if (line.version)
        return std::puts("sela-share " SELA_VERSION) < 0;
    return share(line);
}
