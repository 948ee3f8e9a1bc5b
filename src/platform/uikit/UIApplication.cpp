#include "platform/uikit/UIApplication.h"

namespace sela {

UIApplication& UIApplication::shared() {
    static UIApplication application;
    return application;
}

} // namespace sela
