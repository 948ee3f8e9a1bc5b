#include "store/DefaultAlbum.h"

#include "platform/foundation/Bundle.h"
#include "store/SharedAlbumManager.h"

namespace sela {

namespace {

constexpr const char* englishName = "Default Album";

std::set<std::string> namesInAllLanguages() {
    const std::vector<std::string> texts = Bundle::main().localizedStringsOfAllLanguages(englishName);
    std::set<std::string> names(texts.begin(), texts.end());
    if (const auto albums = SharedAlbumManager::getAlbums())
        for (const SharedAlbum& album : *albums)
            if (album.namePath.size() == 1)
                names.erase(album.namePath.front());
    return names;
}

} // namespace

std::vector<std::string> DefaultAlbum::pathOf(const std::vector<std::string>& albumNames) {
    if (albumNames.size() != 1)
        return albumNames;
    if (!names_)
        names_ = namesInAllLanguages();
    return names_->contains(albumNames.front()) ? std::vector<std::string>{englishName} : albumNames;
}

} // namespace sela
