#include "store/StoreConst.h"

#include <cstdlib>

namespace sela {

namespace {

std::string configuredGroupId() {
    const char* const value = std::getenv("SELA_GROUP_ID");
    return value && *value ? value : "group.sela.vault";
}

} // namespace

StoreConst::StoreConst() : groupId(configuredGroupId()) {}

const StoreConst& StoreConst::shared() {
    static const StoreConst instance;
    return instance;
}

} // namespace sela
