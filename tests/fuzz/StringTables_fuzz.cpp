#include "fuzz/FuzzTarget.h"
#include "platform/foundation/StringTable.h"
#include "platform/uikit/NSAttributedString.h"

#include <string>
#include <vector>

namespace {

/// The input's parts between null bytes.
std::vector<std::string> parts(std::string_view text) {
    std::vector<std::string> found;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find('\0');
        found.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return found;
}

} // namespace

// Takes the input for a compiled table; then its first part for a text of a table and the others for what
// that is filled with.
void fuzz(sela::DataView input) {
    if (const auto table = sela::StringTable::parse(input, "table"); !table)
        require(table.error()->localizedDescription().starts_with("table is "));
    std::vector<std::string> arguments = parts(sela::asText(input));
    std::string expected = arguments.front();
    const sela::NSAttributedString text(expected);
    arguments.erase(arguments.begin());
    std::vector<sela::NSAttributedString> attributed;
    for (const std::string& argument : arguments) {
        attributed.emplace_back(argument);
        if (const std::size_t place = expected.find("%@"); place != std::string::npos)
            expected.replace(place, 2, argument);
    }
    // Too few arguments are a mistake of the programmer's.
    if (expected.find("%@") != std::string::npos)
        return;
    require(text.format(attributed).string() == expected);
}
