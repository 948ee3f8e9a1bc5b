#pragma once

#include <array>
#include <string>
#include <string_view>

namespace sela {

/// Whether the screen is shown in light or in dark colours.
enum class UIUserInterfaceStyle { light, dark };

/// Whether those colours have normal or high contrast.
enum class UIAccessibilityContrast { normal, high };

/// The appearance that a screen is shown in. A value.
struct UITraitCollection {
    UITraitCollection(UIUserInterfaceStyle style = UIUserInterfaceStyle::light,
                      UIAccessibilityContrast contrast = UIAccessibilityContrast::normal)
        : userInterfaceStyle(style), accessibilityContrast(contrast) {}

    UIUserInterfaceStyle userInterfaceStyle;
    UIAccessibilityContrast accessibilityContrast;

    bool operator==(const UITraitCollection&) const = default;
};

/// A colour's components as drawn, each 0 to 1, not premultiplied by alpha.
struct RGBA {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const RGBA&) const = default;
};

/// A colour with a value for each appearance. An immutable value; any thread may use it.
class UIColor {
public:
    /// Components 0 to 1, the same in every appearance.
    UIColor(double red, double green, double blue, double alpha);

    /// The asset catalogue's colour of that name. The process stops when there is none: it is a packaging
    /// fault.
    static UIColor named(std::string_view name);

    /// One value for the light and one for the dark appearance, whatever the contrast, without a name.
    static UIColor dynamic(const RGBA& light, const RGBA& dark);

    static UIColor black();
    static UIColor white();
    static UIColor clear();

    /// The platform's default tint.
    static UIColor systemBlue();

    /// The catalogue's name; empty for any other colour.
    const std::string& name() const { return name_; }

    /// The components in that appearance.
    const RGBA& resolve(const UITraitCollection& traits) const;

    /// The same colour at another alpha, 0 to 1; it has no name.
    UIColor withAlpha(double alpha) const;

    /// The colour at `fraction` (0: `from`, 1: `to`) between two, by components; at 1 it is `to` with its
    /// name.
    static UIColor interpolated(const UIColor& from, const UIColor& to, double fraction);

    bool operator==(const UIColor&) const = default;

private:
    /// Light, dark, light in high contrast, dark in high contrast.
    using Values = std::array<RGBA, 4>;

    UIColor(std::string name, const Values& values);

    std::string name_;
    Values values_;
};

} // namespace sela
