#pragma once

#include "platform/media/UIImage.h"

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

namespace sela {

/// Decodes the covers of albums one after another off the main thread, and keeps the most recently used ones.
/// Held by `std::shared_ptr`; main thread only.
class AlbumCovers : public std::enable_shared_from_this<AlbumCovers> {
public:
    /// How many covers are kept: several screens full of rows, about 100 kB each.
    static constexpr std::size_t capacity = 64;

    struct Cover {
        std::string fileName;
        std::optional<UIImage> image; ///< absent: there is no such picture
    };

    /// The cover of that file name; null when it is not cached (yet, or any more).
    const Cover* cover(const std::string& fileName);

    /// Whether a cover is being decoded.
    bool isLoading() const { return loading_; }

    /// Decodes the cover of that file name, and calls `arrived` on the main queue once it is known, unless
    /// this object is destroyed by then. Must not be called while another one is being decoded.
    void load(const std::string& fileName, std::function<void()> arrived);

private:
    void keep(Cover cover);

    std::list<Cover> covers_; ///< the most recently used first
    bool loading_ = false;
};

} // namespace sela
