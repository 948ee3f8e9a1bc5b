#include "host/ShareOptions.h"
#include "manuals/Completions.h"
#include "manuals/ManualPage.h"
#include "platform/foundation/FileManager.h"
#include "vault/VaultOptions.h"

#include <cstdio>
#include <string>

namespace {

constexpr std::int64_t largestPage = 1 << 20;

sela::ErrorRef write(const std::string& text, const std::string& path) {
    return sela::FileManager::defaultManager().writeAtomically(sela::asData(text), sela::URL::fileURL(path));
}

/// All files that are generated from a program's table.
sela::ErrorRef writeAll(const sela::OptionTable& table, const std::string& templates,
                        const std::string& folder) {
    const std::string program(table.program);
    const sela::Result<sela::Data> page =
        sela::FileManager::defaultManager().contentsOfFile(templates + "/" + program + ".1.in", largestPage);
    if (!page)
        return page.error();
    const sela::Result<std::string> filled = sela::manualPage(table, sela::asText(page.value()));
    if (!filled)
        return filled.error();
    if (sela::ErrorRef error = write(filled.value(), folder + "/" + program + ".1"))
        return error;
    if (sela::ErrorRef error = write(sela::bashCompletion(table), folder + "/" + program + ".bash"))
        return error;
    if (sela::ErrorRef error = write(sela::fishCompletion(table), folder + "/" + program + ".fish"))
        return error;
    return write(sela::zshCompletion(table), folder + "/_" + program);
}

} // namespace

/// sela-manuals TEMPLATES FOLDER: writes the manual pages of the programs, from their templates, and their
/// completions into an existing folder.
int main(int argc, char** argv) {
    if (argc != 3)
        return 64;
    for (const sela::OptionTable& table : {sela::shareOptions(), sela::vaultOptions()}) {
        if (const sela::ErrorRef error = writeAll(table, argv[1], argv[2])) {
            std::fprintf(stderr, "sela-manuals: %s: %s\n", std::string(table.program).c_str(),
                         error->localizedDescription().c_str());
            return 1;
        }
    }
    return 0;
}
