#include "host/TreeWriter.h"

#include "platform/foundation/JSONWriter.h"

#include <cmath>
#include <optional>
#include <variant>

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

void writeImage(JSONWriter& json, const UIImage& image) {
    const PixelBuffer* const pixels = image.pixels();
    json.key("image").string(pixels ? std::to_string(pixels->width) + "x" + std::to_string(pixels->height)
                                    : image.assetName());
}

void writeContent(JSONWriter& json, const UIView& view) {
    std::optional<TextContent> text;
    std::optional<ImageContent> image;
    for (const UIView* const part : view.contentViews()) {
        const ViewContent content = part->content();
        if (const auto* const shown = std::get_if<TextContent>(&content))
            text = *shown;
        else if (const auto* const picture = std::get_if<ImageContent>(&content))
            image = *picture;
    }
    if (text)
        json.key("text").string(text->text.string());
    if (image)
        writeImage(json, image->image);
    if (text)
        writeFont(json, text->font);
    const ViewContent own = view.content();
    if (const auto* const ownText = std::get_if<TextContent>(&own);
        ownText && ownText->isTruncated(view.bounds().size))
        json.key("truncated").boolean(true);
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

} // namespace sela::TreeWriter
