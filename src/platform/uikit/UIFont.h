#pragma once

#include <string>
#include <string_view>

namespace sela {

/// A font at a size: the system font in one of its weights, or a font by its name. An immutable value; any
/// thread may use it.
class UIFont {
public:
    enum class Weight { light, regular, semibold, bold };

    /// The system font. `size` is the em size in points; the regular weight unless another is given.
    static UIFont systemFont(double size, Weight weight = Weight::regular);
    static UIFont boldSystemFont(double size) { return systemFont(size, Weight::bold); }

    /// A font by its full name: family, then "-" and the weight's name ("Roboto-Light"); without a known
    /// weight's name the weight is regular.
    static UIFont named(std::string_view name, double size);

    /// The full name; empty for the system font.
    const std::string& name() const { return name_; }

    /// The family's name ("Roboto"); empty for the system font.
    std::string familyName() const;

    double size() const { return size_; }
    Weight weight() const { return weight_; }

    /// "light", "regular", "semibold" or "bold".
    std::string_view weightName() const;

    /// The same font at another size.
    UIFont withSize(double size) const;

    bool operator==(const UIFont&) const = default;

private:
    UIFont(std::string name, double size, Weight weight);

    std::string name_;
    double size_;
    Weight weight_;
};

} // namespace sela
