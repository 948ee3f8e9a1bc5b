#include "platform/uikit/UIColor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace sela {
namespace {

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

/// Relative luminance and contrast as the Web Content Accessibility Guidelines 2.1 define them.
double luminance(const RGBA& color) {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const UIColor& text, const UIColor& ground, const UITraitCollection& traits) {
    const double a = luminance(text.resolve(traits)), b = luminance(ground.resolve(traits));
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(NamedColors, KeepTextReadableInEveryAppearance) {
    EXPECT_NEAR(contrast(UIColor::black(), UIColor::white(), UIUserInterfaceStyle::light), 21, 1e-9);
    const struct {
        const char* text;
        const char* ground;
    } pairs[] = {{"AppText", "AppCard"},
                 {"AppTextSecond", "AppCard"},
                 {"AppTint", "AppCard"},
                 {"AlertButtonDefault", "AppCard"},
                 {"TintButtonText", "AppTint"}};
    for (const auto& [text, ground] : pairs)
        for (const auto style : {UIUserInterfaceStyle::light, UIUserInterfaceStyle::dark})
            for (const auto amount : {UIAccessibilityContrast::normal, UIAccessibilityContrast::high}) {
                const UITraitCollection traits(style, amount);
                EXPECT_GE(contrast(UIColor::named(text), UIColor::named(ground), traits),
                          amount == UIAccessibilityContrast::high ? 10 : 4.5)
                    << text << " on " << ground
                    << (style == UIUserInterfaceStyle::dark ? ", dark" : ", light");
                EXPECT_EQ(UIColor::named(text).resolve(traits).alpha, 1);
            }
}

} // namespace
} // namespace sela
