#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace sela {

/// The album of files that are shared without choosing one. A record has its name in the language of the
/// interface, so that the ledger may contain its name in every language. Reads these names on first use. Used
/// by one thread at a time.
class DefaultAlbum {
public:
    /// The path of the album that a record means: its own, or the default album's English name. A name that
    /// is also that of an album in the catalogue means that album, since it may have been chosen.
    std::vector<std::string> pathOf(const std::vector<std::string>& albumNames);

private:
    std::optional<std::set<std::string>> names_;
};

} // namespace sela
