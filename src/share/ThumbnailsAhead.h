#pragma once

#include "platform/media/UIImage.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace sela {

/// Thumbnails that are made before the walk over the attachments comes to them, so that two decoders work at
/// the same time. They are taken in the walk's order, and what making one logs is logged when it is taken.
///
/// Used by the walk alone, which is on one thread at a time.
class ThumbnailsAhead {
public:
    /// Makes a thumbnail; absent when there is none. Runs on any thread, once.
    using Maker = std::function<std::optional<UIImage>()>;

    /// Whether two are made at once: there is a second processor, and memory for two decoders.
    static bool canMakeTwo();

    /// Whether that place has a thumbnail to take.
    bool has(std::int64_t place) const { return places_.contains(place); }

    /// Puts a thumbnail in a place that has none. Where two can be made at once, a thread for all of them
    /// makes it, after those added before. At the latest it is made when it is taken, and not at all once
    /// this object is gone.
    void add(std::int64_t place, Maker make);

    /// The thumbnail of a place that has one, which has none from then on. While it is being made elsewhere,
    /// this thread makes those of the places that follow, so it may take as long as two of them.
    std::optional<UIImage> take(std::int64_t place);

private:
    struct Thumbnail;

    std::map<std::int64_t, std::shared_ptr<Thumbnail>> places_;
};

} // namespace sela
