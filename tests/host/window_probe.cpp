#include "host/ProbeController.h"
#include "host/ShareHost.h"

#include <cstdio>

/// Shows the probe screen in a window until it is closed, and then prints what was touched and how far the
/// table was scrolled.
int main(int argc, char** argv) {
    const auto line = sela::CommandLine::parse({argv + 1, argv + argc});
    if (!std::holds_alternative<sela::CommandLine>(line))
        return static_cast<int>(sela::ExitStatus::badArguments);
    sela::ShareHost host(std::get<sela::CommandLine>(line));
    sela::NSExtensionContext context({});
    const auto probe = std::make_shared<sela::ProbeController>();
    probe->onCancel = [&context] {
        context.cancelRequestWithError(std::make_shared<sela::NSError>(
            sela::NSCocoaErrorDomain, sela::NSUserCancelledError, "Cancelled."));
    };
    const sela::ExitStatus status = host.run({probe, {}, {}, {}}, context);
    for (const std::string& touched : probe->touched)
        std::printf("%s\n", touched.c_str());
    std::printf("offset %g\n", probe->tableView.contentOffset().y);
    return static_cast<int>(status);
}
