#include "host/CardPlacement.h"
#include "share/SelaShareExtensionEntryVc.h"
#include "ui/UIScale.h"

#include <gtest/gtest.h>

namespace sela {

TEST(CardPlacement, LeavesAirOnEachSideOfTheCardOnEveryDisplay) {
    const struct {
        CGSize display;
        double scale; ///< of the card
    } cases[] = {
        {{320, 240}, 192 / 390.0},
        {{480, 320}, 272 / 390.0},
        {{800, 480}, 1},
        {{1024, 600}, 1},
        {{1280, 720}, 1},
        {{1128, 752}, 1},
        {{1366, 768}, 1},
        {{1600, 900}, 900 / 768.0},
        {{1920, 1080}, 1080 / 768.0},
        {{3840, 2160}, 2160 / 768.0},
        {{7680, 4320}, 4320 / 768.0},
        {{360, 720}, 0.96},
        {{320, 568}, 0.85},
        {{700, 720}, 672 / 390.0},
        {{767, 1024}, 767 / 375.0},
        {{768, 1024}, 1},
        {{1080, 1920}, 1080 / 768.0},
    };
    const CGSize card = SelaShareExtensionEntryVc::cardSize;
    for (const auto& [display, expected] : cases) {
        const double scale = getUIScale(CardPlacement::screenFor(display));
        EXPECT_NEAR(scale, expected, 1e-9) << display.width << "x" << display.height;
        EXPECT_LE(card.width * scale, display.width - 2 * CardPlacement::air + 1e-9) << display.width;
        EXPECT_LE(card.height * scale, display.height - 2 * CardPlacement::air + 1e-9) << display.height;
    }
}

} // namespace sela
