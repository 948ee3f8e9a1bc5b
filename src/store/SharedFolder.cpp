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

} // namespace sela
