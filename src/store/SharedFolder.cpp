#include "store/SharedFolder.h"

#include "platform/foundation/FileManager.h"
#include "store/StoreConst.h"

namespace sela {

std::optional<URL> sharedFolderUrl() {
    return FileManager::defaultManager().containerURL(StoreConst::shared().groupId);
}

std::optional<UserDefaults> sharedDefaults(UserDefaults::Patience patience) {
    return UserDefaults::withSuiteName(StoreConst::shared().groupId, patience);
}

Result<UserDefaults> openSharedDefaults(UserDefaults::Patience patience) {
    return UserDefaults::open(StoreConst::shared().groupId, patience);
}

Result<SettingsTransaction> changeSharedDefaults() {
    Result<UserDefaults> defaults = openSharedDefaults();
    if (!defaults)
        return defaults.error();
    return SettingsTransaction::begin(std::move(defaults.value()));
}

} // namespace sela
