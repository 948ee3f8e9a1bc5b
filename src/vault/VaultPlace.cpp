#include "vault/VaultPlace.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "store/StoreConst.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

Result<URL> vaultPlace() {
    const std::string& group = StoreConst::shared().groupId;
    const std::optional<URL> place = FileManager::defaultManager().provisioningURL(group);
    if (!place)
        return ShareExtensionError::make("there is no place for the group \"" + group + "\"");
    return *place;
}

Result<URL> vaultContainer() {
    Result<URL> place = vaultPlace();
    if (!place)
        return place;
    const Result<FileAttributes> attributes =
        FileManager::defaultManager().attributesOfItem(place.value().path());
    const auto* const error = dynamic_cast<const NSError*>(attributes.error().get());
    if (error && error->code() == ENOENT)
        return ShareExtensionError::make("there is no vault yet; run \"sela-vault init\" first");
    if (!attributes)
        return attributes.error();
    if (attributes.value().type != FileAttributes::Type::directory)
        return NSError::posix(ENOTDIR, place.value().path());
    return place;
}

std::optional<URL> settingsFile() {
    const std::optional<URL> config = BaseDirectories::config();
    if (!config)
        return std::nullopt;
    return config->appendingPathComponent("sela").appendingPathComponent(StoreConst::shared().groupId +
                                                                         ".sqlite3");
}

bool isInsideContainer(const URL& folder, const URL& container) {
    FileManager& files = FileManager::defaultManager();
    std::vector<FileAttributes> own;
    // Each of the folders may be a link to another place.
    for (const std::string_view name : {std::string_view("."), itemsFolderName, albumThumbnailsFolderName})
        if (const auto attributes = files.attributesOfItem(container.appendingPathComponent(name).path()))
            own.push_back(attributes.value());
    URL existing = folder;
    while (existing.path() != "/" && !files.fileExists(existing.path()))
        existing = existing.deletingLastPathComponent();
    std::string path = existing.path();
    Result<FileAttributes> here = files.attributesOfItem(path);
    while (here) {
        if (std::ranges::any_of(own, [&](const auto& each) { return each.isSameFile(here.value()); }))
            return true;
        path += "/..";
        const Result<FileAttributes> above = files.attributesOfItem(path);
        if (above && above.value().isSameFile(here.value()))
            return false;
        here = above;
    }
    return false;
}

} // namespace sela
