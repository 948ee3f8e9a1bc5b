#include "vault/VaultOptions.h"

namespace sela {

namespace {

constexpr std::string_view albumPathRule =
    "PATH is a name, or two like Trips/Rome for an album inside another; a \"/\" or \"\\\" that belongs to a "
    "name has a \"\\\" before it: AC\\/DC, Back\\\\Black. A name has up to 255 bytes, and no control "
    "characters.";

OptionTable makeTable() {
    OptionTable table;
    table.program = "sela-vault";
    table.usage = "COMMAND [OPTION]...";
    table.introduction =
        "Looks after the vault that sela-share adds to: its passcodes and albums, and what was shared.";
    table.examples = firstVault;
    const Option decoy = {.name = "--decoy", .help = "of the decoy vault"};
    const Option force = {.name = "--force", .help = "also while files wait for it in the ledger"};
    table.commands = {
        {.name = "init", .help = "make a vault", .detail = "Until then nothing can be shared."},
        {.name = "passcode set",
         .help = "set the passcode that shows your albums",
         .options = {{.name = "--decoy", .help = "set the one that shows the decoy's albums in their place"},
                     {.name = "--file",
                      .value = "FILE",
                      .help = "the passcode is the first line of a file, or of standard input for -",
                      .completion = Completion::files}},
         .detail =
             "Without a file it is asked for twice, and a terminal does not show what is typed. A passcode "
             "that "
             "would give the vault away is refused: one that is empty or that the keypad cannot type, a "
             "decoy "
             "passcode that is the vault passcode or the start of it or begins with it or is longer, a decoy "
             "beside a vault passcode that has neither 4 nor 6 digits."},
        {.name = "passcode clear",
         .help = "clear the decoy passcode",
         .options = {{.name = "--decoy", .help = "say that it is the decoy's"}}},
        {.name = "album add",
         .operands = "PATH",
         .help = "add an album",
         .options = {decoy,
                     {.name = "--cover",
                      .value = "FILE",
                      .help = "a picture to show beside its name",
                      .completion = Completion::files},
                     {.name = "--password",
                      .help = "ask for a password that unfolds it in the picker",
                      .detail = "It guards the albums inside it, so that of an album inside another is never "
                                "asked for. The album itself can be chosen without it."}},
         .detail = albumPathRule},
        {.name = "album rename",
         .operands = "PATH NAME",
         .help = "give an album another name",
         .options = {decoy, force}},
        {.name = "album remove",
         .operands = "PATH",
         .help = "remove an album and those inside it",
         .options = {decoy, force}},
        {.name = "album cover",
         .operands = "PATH FILE",
         .help = "give an album another cover",
         .options = {decoy},
         .completion = Completion::files},
        {.name = "album list",
         .help = "list the albums of both vaults",
         .options = {{.name = "--passcode-file",
                      .value = "FILE",
                      .help = "list only the paths of those that a passcode opens",
                      .completion = Completion::files}}},
        {.name = "publish",
         .operands = "CATALOGUE.json",
         .help = "publish the albums of a catalogue in place of all that were there, for programs",
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
                      .completion = Completion::folders},
                     {.name = "--check", .help = "only tell what publishing would tell"}},
         .completion = Completion::files,
         .detail =
             "Nothing changes when the catalogue is not what it should be, or when a passcode or an album's "
             "password would give the vault away. Albums that are not shown and covers that are not there "
             "are "
             "told."},
        {.name = "ledger",
         .help = "list what was shared and waits for the import",
         .options = {{.name = "--discard",
                      .value = "KEY",
                      .help = "print an earlier ledger that could not be read, and remove it",
                      .detail = "Its KEY is in the list. As long as it is kept, --prune removes no files, "
                                "since it may record them."}}},
        {.name = "import",
         .help = "move what was shared into a folder",
         .options = {{.name = "--into",
                      .value = "FOLDER",
                      .help = "where to: FOLDER/vault and FOLDER/decoy, a folder for each album",
                      .completion = Completion::folders},
                     {.name = "--keep", .help = "copy, and leave the ledger as it is"},
                     {.name = "--prune",
                      .help = "remove files that no entry knows, a day after they were left"},
                     {.name = "--drop-missing", .help = "drop entries whose file is missing"},
                     {.name = "--watch", .help = "go on, and import whenever something was shared"}},
         .detail =
             "No file is ever overwritten, and an entry leaves the ledger only after its file is safely in "
             "place. SIGINT and SIGTERM end it after the file under way; what was imported until then is "
             "told, "
             "and the next import goes on."},
        {.name = "doctor",
         .help = "look whether all of the vault is as it should be",
         .options = {{.name = "--mend", .help = "mend what can be mended without losing anything"}}}};
    table.groups = {
        {"Options of every command",
         {{.name = "--json", .help = "print one JSON object (docs/formats.md); the ledger as it is stored"},
          {.name = "--help", .help = "this text, or that of the command", .letter = 'h'},
          {.name = "--version", .help = "the version", .letter = 'V'}}}};
    table.statuses = {
        {0, "done"},
        {1, "something could not be done, as standard error says, or doctor found something, as it prints"},
        {64, "bad arguments"}};
    return table;
}

} // namespace

const OptionTable& vaultOptions() {
    static const OptionTable table = makeTable();
    return table;
}

} // namespace sela
