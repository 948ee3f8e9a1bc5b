#include "vault/VaultOptions.h"

namespace sela {

namespace {

OptionTable makeTable() {
    OptionTable table;
    table.program = "sela-vault";
    table.usage = "COMMAND [OPTION]...";
    table.introduction = "The companion of the vault's main application: shares its group with sela-share.";
    table.commands = {
        {.name = "init", .help = "make the group's container", .detail = "Until then nothing can be shared."},
        {.name = "publish",
         .operands = "CATALOGUE.json",
         .help = "publish albums for sela-share to offer",
         .options = {{.name = "--passcode-file",
                      .value = "FILE",
                      .help = "the vault passcode: the first line of a file, or of standard input for -",
                      .completion = Completion::files,
                      .detail = "A terminal does not show what is typed."},
                     {.name = "--decoy-passcode-file",
                      .value = "FILE",
                      .help = "the decoy passcode, which opens a decoy set of albums",
                      .completion = Completion::files},
                     {.name = "--covers",
                      .value = "FOLDER",
                      .help = "the pictures that the catalogue names as covers",
                      .completion = Completion::folders}},
         .completion = Completion::files,
         .detail = "Nothing changes when the catalogue is not what it should be, or when a passcode or an "
                   "album's password would give the vault away: one that is empty or that the keypad cannot "
                   "type, a decoy passcode that is the vault passcode or the start of it or begins with it "
                   "or is longer, a decoy beside a vault passcode that has neither 4 nor 6 digits. Albums "
                   "that are not shown and covers that are not there are told."},
        {.name = "albums", .help = "list the published albums"},
        {.name = "ledger",
         .help = "list what was shared and waits for the import",
         .options = {{.name = "--json", .help = "as it is stored"}}},
        {.name = "import",
         .help = "move what was shared into a folder",
         .options = {{.name = "--into",
                      .value = "FOLDER",
                      .help = "where to: FOLDER/vault and FOLDER/decoy, a folder for each album",
                      .completion = Completion::folders},
                     {.name = "--keep", .help = "copy, and leave the ledger as it is"},
                     {.name = "--prune",
                      .help = "remove files that no entry knows, a day after they were left"},
                     {.name = "--drop-missing", .help = "drop entries whose file is missing"}},
         .detail =
             "No file is ever overwritten, and an entry leaves the ledger only after its file is safely in "
             "place."}};
    table.groups = {{"Options",
                     {{.name = "--help", .help = "this text, or that of the command", .letter = 'h'},
                      {.name = "--version", .help = "the version", .letter = 'V'}}}};
    table.statuses = {
        {0, "done"}, {1, "something could not be done; standard error says what"}, {64, "bad arguments"}};
    return table;
}

} // namespace

const OptionTable& vaultOptions() {
    static const OptionTable table = makeTable();
    return table;
}

} // namespace sela
