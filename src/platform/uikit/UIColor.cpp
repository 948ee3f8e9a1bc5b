#include "platform/uikit/UIColor.h"

#include "platform/foundation/AssetCatalogue.h"
#include "platform/foundation/FatalError.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace sela {

namespace {

RGBA unpacked(std::uint32_t rgba) {
    const auto component = [&](int shift) { return static_cast<double>((rgba >> shift) & 0xFFu) / 255; };
    return {component(24), component(16), component(8), component(0)};
}

/// Components mix in proportion to their alpha, so that a colour that fades in keeps its hue.
RGBA mixed(const RGBA& from, const RGBA& to, double fraction) {
    const double alpha = std::lerp(from.alpha, to.alpha, fraction);
    if (alpha <= 0)
        return {to.red, to.green, to.blue, 0};
    const auto component = [&](double RGBA::*part) {
        return std::lerp(from.*part * from.alpha, to.*part * to.alpha, fraction) / alpha;
    };
    return {component(&RGBA::red), component(&RGBA::green), component(&RGBA::blue), alpha};
}

} // namespace

UIColor::UIColor(std::string name, const Values& values) : name_(std::move(name)), values_(values) {}

UIColor::UIColor(double red, double green, double blue, double alpha) {
    values_.fill({red, green, blue, alpha});
}

UIColor UIColor::named(std::string_view name) {
    const std::optional<AssetCatalogue::NamedColor> color = AssetCatalogue::color(name);
    if (!color)
        fatalError("UIColor: the asset catalogue has no colour named " + std::string(name));
    return UIColor(std::string(name),
                   {unpacked(color->light), unpacked(color->dark), unpacked(color->lightHighContrast),
                    unpacked(color->darkHighContrast)});
}

UIColor UIColor::dynamic(const RGBA& light, const RGBA& dark) {
    return UIColor({}, {light, dark, light, dark});
}

UIColor UIColor::black() {
    return {0, 0, 0, 1};
}

UIColor UIColor::white() {
    return {1, 1, 1, 1};
}

UIColor UIColor::clear() {
    return {0, 0, 0, 0};
}

UIColor UIColor::systemBlue() {
    return dynamic({0, 122.0 / 255, 1, 1}, {10.0 / 255, 132.0 / 255, 1, 1});
}

const RGBA& UIColor::resolve(const UITraitCollection& traits) const {
    const std::size_t style = traits.userInterfaceStyle == UIUserInterfaceStyle::dark ? 1 : 0;
    const std::size_t contrast = traits.accessibilityContrast == UIAccessibilityContrast::high ? 2 : 0;
    return values_[style + contrast];
}

UIColor UIColor::withAlpha(double alpha) const {
    UIColor color({}, values_);
    for (RGBA& value : color.values_)
        value.alpha = alpha;
    return color;
}

UIColor UIColor::interpolated(const UIColor& from, const UIColor& to, double fraction) {
    if (fraction >= 1)
        return to;
    Values values;
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = mixed(from.values_[i], to.values_[i], fraction);
    return UIColor({}, values);
}

} // namespace sela
