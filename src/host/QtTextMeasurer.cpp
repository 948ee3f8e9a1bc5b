#include "host/QtTextMeasurer.h"

#include <cmath>

namespace sela {

namespace {

template<class T>
void appendBytes(std::string& key, const T& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Everything that decides what a layout looks like, as bytes.
std::string layoutKey(const NSAttributedString& text, double width, int maximumLines,
                      const UITraitCollection& traits) {
    std::string key;
    appendBytes(key, width);
    appendBytes(key, maximumLines);
    for (const NSAttributedString::Run& run : text.runs()) {
        appendBytes(key, run.text.size());
        key += run.text;
        appendBytes(key, run.attributes.givesWay);
        if (const std::optional<UIFont>& font = run.attributes.font) {
            key += font->name();
            appendBytes(key, font->size());
            appendBytes(key, font->weight());
        }
        if (const std::optional<UIColor>& color = run.attributes.foregroundColor) {
            const RGBA& components = color->resolve(traits);
            appendBytes(key, components);
        }
    }
    return key;
}

} // namespace

CGSize QtTextMeasurer::size(const NSAttributedString& text, double maximumWidth, int maximumLines) const {
    const CGSize size = layout(text, maximumWidth, maximumLines, {})->size();
    return {std::ceil(size.width), std::ceil(size.height)};
}

std::shared_ptr<const TextLayout> QtTextMeasurer::layout(const NSAttributedString& text, double width,
                                                         int maximumLines,
                                                         const UITraitCollection& traits) const {
    if (layouts_.size() >= capacity)
        layouts_.clear();
    std::shared_ptr<const TextLayout>& layout = layouts_[layoutKey(text, width, maximumLines, traits)];
    if (!layout)
        layout = std::make_shared<TextLayout>(text, width, maximumLines, traits, fonts_);
    return layout;
}

} // namespace sela
