#include "vault/VaultPlace.h"

#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/StoreConst.h"

#include <cerrno>
#include <optional>

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

} // namespace sela
