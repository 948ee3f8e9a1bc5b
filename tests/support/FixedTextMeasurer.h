#pragma once

#include "platform/uikit/TextMeasurer.h"

namespace sela {

/// Text metrics that need no font files and are the same everywhere: each character is half the font's size
/// wide, and a line is 1.2 times the text's largest font's size high. Lines break wherever they are full.
/// Installed for as long as it lives.
class FixedTextMeasurer : public TextMeasurer {
public:
    static constexpr double widthPerSize = 0.5;
    static constexpr double heightPerSize = 1.2;

    FixedTextMeasurer() { setCurrent(this); }
    ~FixedTextMeasurer() override { setCurrent(nullptr); }
    FixedTextMeasurer(const FixedTextMeasurer&) = delete;
    FixedTextMeasurer& operator=(const FixedTextMeasurer&) = delete;

    CGSize size(const NSAttributedString& text, double maximumWidth, int maximumLines) const override;
};

} // namespace sela
