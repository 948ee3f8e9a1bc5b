#include "ui/DocumentSheet.h"

#include <algorithm>
#include <string>

namespace sela {

namespace {

/// Longer extensions are hardly a kind of file.
constexpr std::size_t longestExtension = 8;

/// Fractions of the sheet's size.
constexpr double labelTop = 0.5;
constexpr double labelHeight = 0.3;
constexpr double fontSize = 0.24;
constexpr double sideMargin = 0.08;

std::string capitals(std::string_view word) {
    std::string text(word);
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    return text;
}

} // namespace

DocumentSheet::DocumentSheet(std::string_view name)
    : UIView(name), sheet_("sheet", UIImage::named("Document")) {
    setUserInteractionEnabled(false);
    extensionLabel_.setTextColor(UIColor::named("AppTextSecond"));
    extensionLabel_.setTextAlignment(NSTextAlignment::center);
    extensionLabel_.setAdjustsFontSizeToFitWidth(true);
    addSubview(sheet_);
    addSubview(extensionLabel_);
}

void DocumentSheet::setFileName(std::string_view fileName) {
    const std::size_t dot = fileName.rfind('.');
    const std::string_view extension =
        dot == std::string_view::npos || dot == 0 ? std::string_view() : fileName.substr(dot + 1);
    extensionLabel_.setText(extension.size() <= longestExtension ? capitals(extension) : std::string());
}

void DocumentSheet::layoutSubviews() {
    const CGSize size = bounds().size;
    sheet_.setLayoutFrame(bounds());
    extensionLabel_.setFont(UIFont::boldSystemFont(size.width * fontSize));
    extensionLabel_.setLayoutFrame({size.width * sideMargin, size.height * labelTop,
                                    size.width * (1 - 2 * sideMargin), size.height * labelHeight});
}

} // namespace sela
