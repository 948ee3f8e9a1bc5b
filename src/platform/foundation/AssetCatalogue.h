#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace sela {

/// The asset catalogue compiled into the programs from resources/: named colours and named images. Constant;
/// any thread.
namespace AssetCatalogue {

/// A named colour: 0xRRGGBBAA for the light and the dark appearance, and for both in high contrast.
struct NamedColor {
    std::string_view name;
    std::uint32_t light;
    std::uint32_t dark;
    std::uint32_t lightHighContrast;
    std::uint32_t darkHighContrast;
};

/// A named image: the text of an SVG file. Its width and height attributes are its size in points.
struct NamedImage {
    std::string_view name;
    std::string_view svg;
};

/// Absent when there is no such colour.
std::optional<NamedColor> color(std::string_view name);

/// Absent when there is no such image.
std::optional<NamedImage> image(std::string_view name);

} // namespace AssetCatalogue

} // namespace sela
