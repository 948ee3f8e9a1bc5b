#include "unlock/AlbumCovers.h"

#include "platform/foundation/DispatchQueue.h"
#include "store/SharedAlbumManager.h"

#include <algorithm>
#include <utility>

namespace sela {

const AlbumCovers::Cover* AlbumCovers::cover(const std::string& fileName) {
    const auto found = std::ranges::find(covers_, fileName, &Cover::fileName);
    if (found == covers_.end())
        return nullptr;
    covers_.splice(covers_.begin(), covers_, found);
    return &covers_.front();
}

void AlbumCovers::load(const std::string& fileName, std::function<void()> arrived) {
    loading_ = true;
    DispatchQueue::global().async([weak = weak_from_this(), fileName, arrived = std::move(arrived)] {
        Cover cover{fileName, SharedAlbumManager::thumbnail(fileName)};
        DispatchQueue::main().async([weak, arrived, cover = std::move(cover)]() mutable {
            const std::shared_ptr<AlbumCovers> self = weak.lock();
            if (!self)
                return;
            self->loading_ = false;
            self->keep(std::move(cover));
            arrived();
        });
    });
}

void AlbumCovers::keep(Cover cover) {
    covers_.push_front(std::move(cover));
    if (covers_.size() > capacity)
        covers_.pop_back();
}

} // namespace sela
