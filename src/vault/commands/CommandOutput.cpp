#include "platform/foundation/NSLog.h"
#include "vault/commands/Commands.h"

#include <cstdio>
#include <cstdlib>
#include <sysexits.h>

namespace sela {

int fail(const std::string& message) {
    std::fprintf(stderr, "sela-vault: %s\n", escapedForLog(message).c_str());
    return EXIT_FAILURE;
}

int fail(const ErrorRef& error) {
    return fail(error->localizedDescription());
}

int misuse(const std::string& message) {
    fail(message);
    std::fputs("Try \"sela-vault --help\".\n", stderr);
    return EX_USAGE;
}

int print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : fail(std::string("standard output cannot be written"));
}

int print(const Result<std::string>& text) {
    return text ? print(text.value()) : fail(text.error());
}

int printJSON(const std::function<void(JSONWriter&)>& write) {
    JSONWriter writer;
    writer.beginObject();
    write(writer);
    writer.endObject();
    // Characters that control a terminal occur only inside strings, where the log's escapes are valid JSON
    // too.
    return print(escapedForLog(writer.text()) + "\n");
}

} // namespace sela
