#pragma once

#include "host/FontCache.h"
#include "host/TextLayout.h"
#include "platform/uikit/TextMeasurer.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace sela {

/// Measures text with the fonts that draw it, and keeps its layouts for drawing. Needs a QGuiApplication from
/// the first text on; main thread only.
class QtTextMeasurer : public TextMeasurer {
public:
    CGSize size(const NSAttributedString& text, double maximumWidth, int maximumLines) const override;

    /// `text` laid out as `TextLayout` says; the same object for the same arguments as long as it is
    /// remembered.
    std::shared_ptr<const TextLayout> layout(const NSAttributedString& text, double width, int maximumLines,
                                             const UITraitCollection& traits) const;

private:
    /// Layouts remembered at most; beyond that all are forgotten.
    static constexpr std::size_t capacity = 512;

    mutable FontCache fonts_;
    mutable std::unordered_map<std::string, std::shared_ptr<const TextLayout>> layouts_;
};

} // namespace sela
