#pragma once

#include <string>
#include <string_view>

namespace sela {

/// The resources of the program that stand beside it: its string tables.
///
/// `main` must be asked for the first time before the process has a second thread, since it settles the
/// languages in the environment; afterwards every thread may use it.
class Bundle {
public:
    static const Bundle& main();

    /// The text of a key in the user's language, chosen as gettext does: $LC_ALL, $LC_MESSAGES or $LANG, the
    /// first of them that is set, names it, and where that is not the plain "C" or "POSIX", $LANGUAGE may
    /// list several instead. The first of them whose table has the key gives the text, then English, then the
    /// key itself.
    std::string localizedString(std::string_view key) const;

    /// The language of the first of those tables, such as "de" or "zh_CN"; empty where no table is found.
    std::string preferredLocalization() const;

    /// The folder of the shared resources, `../share` seen from the program's own folder: the same in a build
    /// tree and where the program is installed.
    const std::string& resourcePath() const { return resourcePath_; }

private:
    Bundle();

    std::string resourcePath_;
};

} // namespace sela
