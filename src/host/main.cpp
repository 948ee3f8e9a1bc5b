#include "host/CommandLine.h"
#include "host/ShareHost.h"
#include "host/ShareRequest.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/NSLog.h"
#include "share/PrincipalClasses.h"
#include "share/SelaShareExtensionVc.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>
#include <vector>

namespace {

int fail(sela::ExitStatus status, const std::string& message) {
    std::fprintf(stderr, "sela-share: %s\n", sela::escapedForLog(message).c_str());
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
    const auto context = std::get<0>(request);
    sela::ShareHost host(line);
    const auto root = sela::makePrincipalViewController(sela::principalClassName);
    root->setExtensionContext(context);
    root->loadViewIfNeeded();
    const sela::SelaShareExtensionVc* const screen = sela::shareScreenOf(*root);
    const sela::ExitStatus status = host.run(
        {root, [screen] { return screen->areImagesShown(); }, [screen] { return screen->hasAddStarted(); }},
        *context);
    if (status == sela::ExitStatus::cannotEnd)
        fail(status, "the request cannot end: attachment " +
                         std::to_string(screen->intake().currentAttachmentIndex + 1) + " of " +
                         std::to_string(screen->intake().itemsCount) +
                         " was never reported as saved (an empty file is not recorded)");
    return static_cast<int>(status);
}

} // namespace

int main(int argc, char** argv) {
    // A file that would exceed a limit is an error of its write, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
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
