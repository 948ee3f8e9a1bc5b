#include "platform/uikit/UIFont.h"

#include <array>
#include <utility>

namespace sela {

namespace {

struct WeightName {
    UIFont::Weight weight;
    std::string_view name;     ///< in dumps
    std::string_view fontName; ///< at the end of a font's full name
};

constexpr auto weightNames = std::to_array<WeightName>({
    {UIFont::Weight::light, "light", "Light"},
    {UIFont::Weight::regular, "regular", "Regular"},
    {UIFont::Weight::semibold, "semibold", "SemiBold"},
    {UIFont::Weight::bold, "bold", "Bold"},
});

} // namespace

UIFont::UIFont(std::string name, double size, Weight weight)
    : name_(std::move(name)), size_(size), weight_(weight) {}

UIFont UIFont::systemFont(double size, Weight weight) {
    return UIFont({}, size, weight);
}

UIFont UIFont::named(std::string_view name, double size) {
    const std::string_view ending = name.substr(name.rfind('-') + 1);
    for (const WeightName& known : weightNames)
        if (known.fontName == ending)
            return UIFont(std::string(name), size, known.weight);
    return UIFont(std::string(name), size, Weight::regular);
}

std::string UIFont::familyName() const {
    return name_.substr(0, name_.rfind('-'));
}

std::string_view UIFont::weightName() const {
    for (const WeightName& known : weightNames)
        if (known.weight == weight_)
            return known.name;
    return {};
}

UIFont UIFont::withSize(double size) const {
    return UIFont(name_, size, weight_);
}

} // namespace sela
