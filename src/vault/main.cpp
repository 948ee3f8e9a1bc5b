#include "commandline/Arguments.h"
#include "platform/foundation/Dumpable.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/StandardStreams.h"
#include "vault/VaultOptions.h"
#include "vault/VaultPlace.h"
#include "vault/commands/Commands.h"

#include <csignal>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

using Action = int (*)(const sela::Arguments&);

constexpr std::pair<std::string_view, Action> actions[] = {
    {"init", sela::initCommand},
    {"passcode set", sela::passcodeSetCommand},
    {"passcode clear", sela::passcodeClearCommand},
    {"album add", sela::albumAddCommand},
    {"album rename", sela::albumRenameCommand},
    {"album remove", sela::albumRemoveCommand},
    {"album cover", sela::albumCoverCommand},
    {"album list", sela::albumListCommand},
    {"publish", sela::publishCommand},
    {"ledger", sela::ledgerCommand},
    {"import", sela::importCommand},
    {"doctor", sela::doctorCommand},
};

int run(const sela::Arguments& arguments) {
    const std::string_view wanted = arguments.command->name;
    if (const sela::ErrorRef problem = wanted == "init" ? nullptr : sela::vaultContainer().error())
        return sela::fail(problem);
    for (const auto& [name, action] : actions)
        if (name == wanted)
            return action(arguments);
    sela::fatalError("no action for the command " + std::string(wanted));
}

} // namespace

int main(int argc, char** argv) {
    sela::openStandardStreams();
    sela::makeUndumpable();
    sela::keepFreedMemory();
    // Exceeding the file size limit, or a closed pipe, is an error of the write, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(077);
    const sela::OptionTable& table = sela::vaultOptions();
    const sela::Result<sela::Arguments> read =
        sela::readArguments(table, std::vector<std::string>(argv + 1, argv + argc));
    if (!read)
        return sela::misuse(read.error()->localizedDescription());
    const sela::Arguments& arguments = read.value();
    if (arguments.has("--help"))
        return sela::print(arguments.command ? sela::helpText(table, *arguments.command)
                                             : sela::helpText(table));
    if (arguments.has("--version"))
        return sela::print(std::string("sela-vault " SELA_VERSION "\n"));
    return arguments.command ? run(arguments) : sela::misuse("a command is missing");
}
