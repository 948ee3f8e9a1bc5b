#include "platform/uikit/UIScreen.h"

namespace sela {

UIScreen& UIScreen::main() {
    static UIScreen screen;
    return screen;
}

} // namespace sela
