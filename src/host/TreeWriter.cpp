#include "host/TreeWriter.h"

#include "platform/foundation/JSONWriter.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <cmath>
#include <fstream>

namespace sela::TreeWriter {

namespace {

double rounded(double value) {
    return std::round(value * 1000) / 1000 + 0.0;
}

void writeFrame(JSONWriter& json, const UIView& view) {
    const CGRect frame = view.presentationToRoot().apply(view.presentation().bounds);
    json.key("frame").beginArray();
    json.number(rounded(frame.minX())).number(rounded(frame.minY()));
    json.number(rounded(frame.size.width)).number(rounded(frame.size.height));
    json.endArray();
}

void writeFont(JSONWriter& json, const UIFont& font) {
    json.key("font").beginObject();
    json.key("name").string(font.name());
    json.key("size").number(rounded(font.size()));
    json.key("weight").string(font.weightName());
    json.endObject();
}

void writeImage(JSONWriter& json, const UIImageView& view) {
    if (!view.image())
        return;
    const PixelBuffer* const pixels = view.image()->pixels();
    json.key("image").string(pixels ? std::to_string(pixels->width) + "x" + std::to_string(pixels->height)
                                    : view.image()->assetName());
}

void writeContent(JSONWriter& json, const UIView& view) {
    if (const auto* label = dynamic_cast<const UILabel*>(&view)) {
        json.key("text").string(label->text());
        writeFont(json, label->font());
        if (label->isTruncated())
            json.key("truncated").boolean(true);
    } else if (const auto* button = dynamic_cast<const UIButton*>(&view)) {
        json.key("text").string(button->attributedTitle() ? button->attributedTitle()->string()
                                                          : button->title());
        writeImage(json, button->imageView());
        writeFont(json, button->titleLabel().font());
    } else if (const auto* image = dynamic_cast<const UIImageView*>(&view)) {
        writeImage(json, *image);
    }
}

void writeView(JSONWriter& json, const UIView& view) {
    const UIView::Presentation shown = view.presentation();
    json.beginObject();
    json.key("class").string(view.className());
    json.key("name").string(view.name());
    if (const UIViewController* const controller = view.viewController())
        json.key("controller").string(controller->className());
    writeFrame(json, view);
    json.key("hidden").boolean(view.isHidden());
    json.key("alpha").number(rounded(shown.alpha));
    writeContent(json, view);
    if (shown.backgroundColor && !shown.backgroundColor->name().empty())
        json.key("background").string(shown.backgroundColor->name());
    if (view.layer().cornerRadius() > 0)
        json.key("cornerRadius").number(rounded(view.layer().cornerRadius()));
    json.key("subviews").beginArray();
    for (const UIView* const subview : view.subviews())
        writeView(json, *subview);
    json.endArray();
    json.endObject();
}

} // namespace

std::string json(UIWindow& window) {
    window.prepareFrame();
    JSONWriter writer;
    if (window.rootViewController())
        writeView(writer, window.rootViewController()->view());
    else
        writer.beginObject().endObject();
    return writer.text();
}

bool write(UIWindow& window, const std::string& path) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << json(window) << '\n';
    return static_cast<bool>(file.flush());
}

} // namespace sela::TreeWriter
