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

    /// The text of a key in the user's language: the first of the languages in $LANGUAGE, $LC_ALL,
    /// $LC_MESSAGES or $LANG that has a table with that key, then English, then the key itself.
    std::string localizedString(std::string_view key) const;

    /// The folder of the shared resources, `../share` seen from the program's own folder: the same in a build
    /// tree and where the program is installed.
    const std::string& resourcePath() const { return resourcePath_; }

private:
    Bundle();

    std::string resourcePath_;
};

} // namespace sela
