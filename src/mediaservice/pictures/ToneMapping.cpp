#include "mediaservice/pictures/ToneMapping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace sela {

namespace {

using Light = std::array<float, 3>; ///< red, green, blue, in cd/m2
using Matrix = std::array<Light, 3>;

constexpr double screenWhite = 203; // cd/m2
constexpr double brightest = 10000; // that PQ can encode
constexpr double hlgPeak = 1000;    // of the display that HLG is viewed on

// To the primaries of sRGB, all with the white of daylight (D65).
constexpr Matrix fromBT2020{
    Light{1.6605F, -0.5876F, -0.0728F}, {-0.1246F, 1.1329F, -0.0083F}, {-0.0182F, -0.1006F, 1.1187F}};
constexpr Matrix fromP3{Light{1.2249F, -0.2247F, 0}, {-0.0420F, 1.0419F, 0}, {-0.0197F, -0.0786F, 1.0979F}};
constexpr Matrix fromSRGB{Light{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

const Matrix& matrixOf(int primaries) {
    return primaries == 9 ? fromBT2020 : primaries == 12 ? fromP3 : fromSRGB;
}

// SMPTE ST 2084.
constexpr double m1 = 2610.0 / 16384;
constexpr double m2 = 2523.0 / 4096 * 128;
constexpr double c1 = 3424.0 / 4096;
constexpr double c2 = 2413.0 / 4096 * 32;
constexpr double c3 = 2392.0 / 4096 * 32;

double lightOfPQ(double signal) {
    const double power = std::pow(signal, 1 / m2);
    return brightest * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
}

double pqOfLight(double light) {
    const double power = std::pow(light / brightest, m1);
    return std::pow((c1 + c2 * power) / (1 + c3 * power), m2);
}

/// The light of a scene, 0 to 1, that an HLG signal stands for (ITU-R BT.2100).
double sceneOfHLG(double signal) {
    constexpr double a = 0.17883277;
    constexpr double b = 1 - 4 * a;
    const double c = 0.5 - a * std::log(4 * a);
    return signal <= 0.5 ? signal * signal / 3 : (std::exp((signal - c) / a) + b) / 12;
}

/// The screen's light for the light of a picture that was made for a display of that peak: unchanged up to a
/// knee, then along a spline that ends at white (ITU-R BT.2390, section 5.4.1).
double screenLight(double light, double peak) {
    const double scale = pqOfLight(peak);
    const double white = pqOfLight(screenWhite) / scale;
    const double knee = 1.5 * white - 0.5;
    const double signal = std::min(pqOfLight(light) / scale, 1.0);
    if (signal < knee)
        return light;
    const double t = (signal - knee) / (1 - knee);
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double mapped =
        (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (3 * t2 - 2 * t3) * white;
    return lightOfPQ(mapped * scale);
}

double encodedSRGB(double linear) {
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

/// A function of light, from 0 to its largest value, as a table that is denser where it is darker.
class Table {
public:
    template<class Function>
    Table(double largest, Function function) : largest_(static_cast<float>(largest)) {
        for (std::size_t i = 0; i < values_.size(); ++i) {
            const double root = static_cast<double>(i) / (values_.size() - 1);
            values_[i] = static_cast<float>(function(largest * root * root * root * root));
        }
    }

    float operator()(float light) const {
        const float root = std::sqrt(std::sqrt(std::clamp(light / largest_, 0.0F, 1.0F)));
        return values_[static_cast<std::size_t>(std::lround(root * static_cast<float>(values_.size() - 1)))];
    }

private:
    float largest_;
    std::array<float, 4096> values_{};
};

} // namespace

struct ToneMapping::Tables {
    explicit Tables(const HDRColours& colours)
        : isHLG(colours.transfer == HDRColours::Transfer::hlg), matrix(matrixOf(colours.primaries)),
          peak(isHLG ? hlgPeak : std::clamp(colours.peak, screenWhite, brightest)),
          seenLight(brightest, [this](double value) { return screenLight(value, peak); }),
          encoded(screenWhite, [](double value) { return 255 * encodedSRGB(value / screenWhite); }) {
        for (std::size_t i = 0; i < light.size(); ++i) {
            const double signal = static_cast<double>(i) / (light.size() - 1);
            light[i] = static_cast<float>(isHLG ? sceneOfHLG(signal) : lightOfPQ(signal));
        }
    }

    void convert(const std::uint16_t* from, std::uint8_t* to) const;

    const bool isHLG;
    const Matrix& matrix;
    const double peak;
    const Table seenLight;           ///< of the screen, by the light of the strongest channel
    const Table encoded;             ///< in sRGB, by the light of the screen
    std::array<float, 4096> light{}; ///< by the upper bits of the signal
};

void ToneMapping::Tables::convert(const std::uint16_t* from, std::uint8_t* to) const {
    Light shown{};
    for (std::size_t i = 0; i < 3; ++i)
        shown[i] = light[from[i] >> 4];
    if (isHLG) {
        const float luminance = 0.2627F * shown[0] + 0.6780F * shown[1] + 0.0593F * shown[2];
        const float gain = static_cast<float>(hlgPeak) * std::pow(luminance, 0.2F);
        for (float& channel : shown)
            channel *= gain;
    }
    Light seen{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            seen[i] += matrix[i][k] * shown[k];
    // The strongest channel is mapped and the others with it, so that the hue stays.
    const float strongest = std::max({seen[0], seen[1], seen[2], 1e-6F});
    const float gain = seenLight(strongest) / strongest;
    for (std::size_t i = 0; i < 3; ++i)
        to[i] = static_cast<std::uint8_t>(std::lround(encoded(seen[i] * gain)));
}

std::optional<HDRColours> HDRColours::of(int transfer, int primaries) {
    switch (transfer) {
    case static_cast<int>(Transfer::pq):
    case static_cast<int>(Transfer::hlg):
        return HDRColours{static_cast<Transfer>(transfer), primaries};
    default:
        return std::nullopt;
    }
}

ToneMapping::ToneMapping(const HDRColours& colours) : tables_(std::make_shared<const Tables>(colours)) {}

void ToneMapping::convert(std::span<const std::uint16_t> from, std::span<std::uint8_t> to) const {
    for (std::size_t i = 0; i + 4 <= from.size(); i += 4) {
        tables_->convert(from.data() + i, to.data() + i);
        to[i + 3] = static_cast<std::uint8_t>(from[i + 3] >> 8);
    }
}

void ToneMapping::convert(std::span<std::uint8_t> pixels) const {
    constexpr int wider = 257; // from 255 to 65,535
    for (std::size_t i = 0; i + 4 <= pixels.size(); i += 4) {
        std::array<std::uint16_t, 3> signals{};
        std::transform(pixels.begin() + static_cast<std::ptrdiff_t>(i),
                       pixels.begin() + static_cast<std::ptrdiff_t>(i + 3), signals.begin(),
                       [](std::uint8_t value) { return static_cast<std::uint16_t>(value * wider); });
        tables_->convert(signals.data(), pixels.data() + i);
    }
}

} // namespace sela
