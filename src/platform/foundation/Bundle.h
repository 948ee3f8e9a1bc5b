#pragma once

#include "platform/foundation/StringTable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// The resources installed with the program: its string tables. Any thread may use it; the languages are
/// those that the environment asks for when `main` is first called.
class Bundle {
public:
    static const Bundle& main();

    /// The text of a key in the user's language, chosen as gettext does: $LC_ALL, $LC_MESSAGES or $LANG, the
    /// first of them that is set, names it, and where that is not the plain "C" or "POSIX", $LANGUAGE may
    /// list several instead. The first of them whose table has the key gives the text, then English, then the
    /// key itself. No locale need be installed for it. A damaged table is logged and passed over.
    std::string localizedString(std::string_view key) const;

    /// The text of a key in every language that there is a table of, in no order, read again at each call.
    std::vector<std::string> localizedStringsOfAllLanguages(std::string_view key) const;

    /// The language of the first of those tables, such as "de" or "zh_CN"; empty where no table is found.
    const std::string& preferredLocalization() const { return preferredLocalization_; }

    /// The folder of the shared resources, `../share` seen from the program's own folder: the same in a build
    /// tree and where the program is installed.
    const std::string& resourcePath() const { return resourcePath_; }

private:
    Bundle();
    std::optional<StringTable> readTable(const std::string& language) const;

    std::string resourcePath_;
    std::string preferredLocalization_;
    std::vector<StringTable> tables_;
};

} // namespace sela
