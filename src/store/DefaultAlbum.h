#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sela {

/// The album of what is shared without choosing one. A record names it as the language of the interface does,
/// so that the ledger knows it by as many names as there are languages. Reads those when they are first asked
/// for. Used by one thread at a time.
class DefaultAlbum {
public:
    /// The path of the album that a record means: its own, or the default album's English name. A name that
    /// the catalogue has for an album of its own means that one, since it may have been chosen.
    std::vector<std::string> pathOf(const std::vector<std::string>& albumNames);

private:
    std::optional<std::set<std::string>> names_;
};

} // namespace sela
