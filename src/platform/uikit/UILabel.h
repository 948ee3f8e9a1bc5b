#pragma once

#include "platform/uikit/UIView.h"

#include <string>
#include <string_view>

namespace sela {

/// A view that shows text, vertically centred, cut off with an ellipsis where it does not fit. Takes no
/// touches unless told to. Main thread only.
class UILabel : public UIView {
public:
    explicit UILabel(const CGRect& frame = {});
    explicit UILabel(std::string_view name);

    /// Plain text (UTF-8) in the label's font and colour.
    std::string text() const { return text_.string(); }
    void setText(std::string_view text);

    /// Text with its own attributes; font and colour of the label where a run has none.
    const NSAttributedString& attributedText() const { return text_; }
    void setAttributedText(const NSAttributedString& text);

    /// The system font of 17 points at first.
    const UIFont& font() const { return font_; }
    void setFont(const UIFont& font);

    /// Black (white in the dark appearance) at first.
    const UIColor& textColor() const { return textColor_; }
    void setTextColor(const UIColor& color);

    /// Natural at first.
    NSTextAlignment textAlignment() const { return textAlignment_; }
    void setTextAlignment(NSTextAlignment alignment);

    /// The most lines, 1 at first; 0: any number.
    int numberOfLines() const { return numberOfLines_; }
    void setNumberOfLines(int lines);

    /// Whether a single line that is too wide shrinks, down to `minimumScaleFactor` (0 to 1) of its size; one
    /// with a run that gives way is cut there instead.
    bool adjustsFontSizeToFitWidth() const { return adjustsFontSizeToFitWidth_; }
    void setAdjustsFontSizeToFitWidth(bool adjusts);
    double minimumScaleFactor() const { return minimumScaleFactor_; }
    void setMinimumScaleFactor(double factor);

    /// The text as it is drawn into the bounds, shrunk when it must be.
    ViewContent content() const override;

    /// The size of the text on lines of unlimited length.
    CGSize intrinsicContentSize() const override;

    /// The height of the text when lines are broken at `width`.
    double intrinsicHeight(double width) const override;

    /// The size of the text when lines are broken at `size.width`.
    CGSize sizeThatFits(CGSize size) const override;

private:
    template<class T>
    void change(T& value, const T& newValue);
    NSAttributedString resolvedText(double scale) const;
    NSAttributedString displayedText() const;
    NSTextAlignment displayedTextAlignment() const;

    NSAttributedString text_;
    UIFont font_;
    UIColor textColor_;
    NSTextAlignment textAlignment_ = NSTextAlignment::natural;
    int numberOfLines_ = 1;
    bool adjustsFontSizeToFitWidth_ = false;
    double minimumScaleFactor_ = 0;
};

} // namespace sela
