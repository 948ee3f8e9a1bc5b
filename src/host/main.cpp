#include "host/CommandLine.h"
#include "host/ErrorOutput.h"
#include "host/MimeAttachments.h"
#include "host/ShareHost.h"
#include "host/ShareRequest.h"
#include "host/ShareWindow.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/Dumpable.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/NSLog.h"
#include "share/PrincipalClasses.h"
#include "share/SelaShareExtensionVc.h"
#include "store/SharedFolder.h"

#include <QClipboard>
#include <QGuiApplication>

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

/// Where a save run stands or stopped, as in "file 2 of 3".
sela::ErrorOutput::Place placeOf(const sela::AttachmentIntake& intake) {
    return {intake.currentAttachmentIndex + 1, intake.itemsCount};
}

/// Tells on standard error what a run did not do.
void tellProblems(const sela::ShareHost& host, const sela::SelaShareExtensionVc& screen,
                  sela::ExitStatus status) {
    const auto [file, count] = placeOf(screen.intake());
    const std::string place = "file " + std::to_string(file) + " of " + std::to_string(count);
    if (host.problem())
        tell(*host.problem());
    if (status == sela::ExitStatus::cannotEnd)
        tell(place +
             " was never reported as saved, so the request cannot end (an empty file is not recorded)");
    else if (status != sela::ExitStatus::cancelled && screen.saveError() && file <= count)
        tell(place + " was not added: " + screen.saveError()->localizedDescription() +
             (file < count ? "; those after it were not tried" : ""));
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
    sela::ShareHost host(line);
    if (line.paste && sela::ShareWindow::isClipboardOpen()) {
        const sela::MimeAttachments pasted =
            sela::MimeAttachments::in(QGuiApplication::clipboard()->mimeData());
        if (const std::optional<std::string> problem = problemWith(pasted))
            return fail(sela::ExitStatus::badArguments, *problem);
        static_cast<sela::NSExtensionItem&>(*context->inputItems.front()).append(pasted.attachments);
    }
    const auto root = sela::makePrincipalViewController(sela::principalClassName);
    root->setExtensionContext(context);
    sela::ExitStatus status;
    sela::SelaShareExtensionVc* screen = nullptr;
    {
        const sela::ErrorOutput output(line, sela::sizeOfFiles(line.attachments),
                                       [&screen] { return placeOf(screen->intake()); });
        root->loadViewIfNeeded();
        screen = sela::shareScreenOf(*root);
        status = host.run({root, [screen] { return screen->areImagesShown(); },
                           [screen](const auto& attachments) { return screen->append(attachments); },
                           [screen] { return screen->hasAddStarted(); }},
                          *context);
    }
    tellProblems(host, *screen, status);
    return static_cast<int>(status);
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
    if (const auto* const problem = std::get_if<std::string>(&parsed))
        return misuse(*problem);
    const auto& line = std::get<sela::CommandLine>(parsed);
    if (line.help)
        return std::fputs(sela::CommandLine::usage().c_str(), stdout) < 0;
    if (line.version)
        return std::puts("sela-share " SELA_VERSION) < 0;
    return share(line);
}
