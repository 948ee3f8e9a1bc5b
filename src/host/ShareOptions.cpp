#include "host/ShareOptions.h"

namespace sela {

namespace {

const std::vector<std::string_view> parts = {"addButton", "albumButton", "cancelButton", "backButton",
                                             "button0",   "button1",     "button2",      "button3",
                                             "button4",   "button5",     "button6",      "button7",
                                             "button8",   "button9",     "row:",         "showChildButton:"};

OptionTable makeTable() {
    OptionTable table;
    table.program = "sela-share";
    table.usage = "[OPTION]... [FILE | file://URL | -]...";
    table.introduction = "Adds photos, videos and audio to your vault. A card opens: choose an album, press "
                         "Add, and every file is "
                         "copied into the vault's container, for the vault to take in when it next starts. "
                         "The files that you name stay "
                         "where they are. \"-\" is a picture from standard input.";
    table.examples = R"(  sela-share photo.jpg video.mp4                     choose an album on the card
  sela-share --headless --tap addButton photo.jpg    the default album, no window
  convert plot.png jpg:- | sela-share -              a picture that a program makes

From nothing to an import:
)" + std::string(firstVault);
    table.completion = Completion::files;
    table.groups = {
        {"What to add", {{.name = "--paste", .help = "the files or the picture on the clipboard, too"}}},
        {"Where to, without a window",
         {{.name = "--album",
           .value = "PATH",
           .help = "add to the album of that name, or to one inside another, as in Trips/Rome",
           .completion = Completion::albums,
           .detail = "It goes the way of a person (keypad, albums, Add), without waiting for what nobody "
                     "sees. A \"/\" or \"\\\" "
                     "inside a name has a \"\\\" before it."},
          {.name = "--passcode-file",
           .value = "FILE",
           .help = "the passcode to type: the first line of a file, or of standard input for -",
           .completion = Completion::files},
          {.name = "--album-password-file",
           .value = "FILE",
           .help = "the password of the album above it, likewise",
           .completion = Completion::files}}},
        {"How it is shown",
         {{.name = "--headless",
           .help = "without a window",
           .detail = "No display is needed, and the steps say what to press."},
          {.name = "--appearance",
           .value = "MODE",
           .help = "light or dark, in place of the desktop's own",
           .words = {"light", "dark"}},
          {.name = "--contrast",
           .value = "MODE",
           .help = "normal or high, in place of the desktop's own",
           .words = {"normal", "high"}},
          {.name = "--screen",
           .value = "WxH",
           .help = "size of the screen in points (375x667 without a display)",
           .words = {"375x667"}},
          {.name = "--scale",
           .value = "N",
           .help = "pixels per point, from 0.25 to 8",
           .words = {"1", "2", "3"}}}},
        {"What is told",
         {{.name = "--json", .help = "print what became of each file as one JSON object (docs/formats.md)"},
          {.name = "--quiet", .help = "on standard error only what went wrong", .letter = 'q'},
          {.name = "--verbose",
           .help = "on a terminal, too, every line that goes to the system's log",
           .letter = 'v'}},
         "Without these two a terminal shows how far saving has come (with --headless), and a file or a pipe "
         "gets the "
         "lines of the log."},
        {"Steps, taken in this order, each once the screen is at rest",
         {{.name = "--tap",
           .value = "NAME",
           .help = "press addButton, albumButton, cancelButton, backButton, button0 to button9, "
                   "row:SECTION:ROW or "
                   "showChildButton:SECTION",
           .words = parts},
          {.name = "--tap-now", .value = "NAME", .help = "the same without waiting for rest", .words = parts},
          {.name = "--type",
           .value = "DIGITS",
           .help =
               "press one digit of the keypad after another; @FILE takes them from its first line, - from "
               "standard input",
           .detail =
               "Digits among the arguments are overwritten at once, but other users of the machine may see "
               "them for a moment, and a shell keeps them in its history: give a passcode by @FILE or -."},
          {.name = "--wait",
           .value = "SECONDS",
           .help = "let time pass; the next step does not wait for rest"},
          {.name = "--snapshot",
           .value = "FILE.png",
           .help = "write a picture of the screen",
           .completion = Completion::files},
          {.name = "--tree",
           .value = "FILE.json",
           .help = "write what is on the screen, as a tree",
           .completion = Completion::files}}},
        {"What there is",
         {{.name = "--help", .help = "this text", .letter = 'h'},
          {.name = "--version", .help = "the version", .letter = 'V'}}}};
    table.statuses = {{0, "everything was added"},
                      {1, "at least one file was not added, which is told on standard error"},
                      {3, "nothing was added: cancelled, or no step pressed Add"},
                      {4, "stuck: saving stopped half-way at a file and can never end"},
                      {64, "nothing was tried: wrong options, unusable files, or no display"},
                      {65, "a step failed, and the request was cancelled unless it had ended before"},
                      {74, "standard output cannot be written; what became of the files is not told"}};
    return table;
}

} // namespace

const OptionTable& shareOptions() {
    static const OptionTable table = makeTable();
    return table;
}

} // namespace sela
