#include "host/ShadowCache.h"

#include "host/GaussianBlur.h"
#include "host/QtConversions.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <span>
#include <variant>

namespace sela {

namespace {

template<class T>
void append(std::string& key, const T& value) {
    const auto bytes = std::as_bytes(std::span(&value, 1));
    key.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void appendText(std::string& key, const std::string& text) {
    append(key, text.size());
    key += text;
}

void appendContent(std::string&, const std::monostate&) {}

void appendContent(std::string& key, const TextContent& content) {
    appendText(key, content.text.description());
    append(key, content.alignment);
}

void appendContent(std::string& key, const ImageContent& content) {
    append(key, content.rect);
    append(key, content.image.pixels());
    appendText(key, content.image.assetName());
}

void appendContent(std::string& key, const SpinnerContent& content) {
    append(key, content.leadingSpoke);
}

/// All properties of a view and its subviews that affect their outline.
void appendLook(std::string& key, const UIView& view, const UIView& caster, const UITraitCollection& traits) {
    const UIView::Presentation shown = view.presentation();
    if (&view != &caster) {
        if (view.isHidden() || shown.alpha <= 0)
            return;
        append(key, shown.toSuperview());
        append(key, shown.alpha);
    }
    append(key, shown.bounds);
    append(key, view.layer().cornerRadius());
    append(key, view.layer().masksToBounds());
    append(key, ShadowCache::coversItsBounds(view, traits));
    if (ShadowCache::coversItsBounds(view, traits))
        return;
    append(key, view.layer().borderWidth());
    append(key, shown.backgroundColor ? shown.backgroundColor->resolve(traits).alpha : 0);
    const ViewContent content = view.content();
    append(key, content.index());
    std::visit([&](const auto& kind) { appendContent(key, kind); }, content);
    append(key, view.subviews().size());
    for (const UIView* const subview : view.subviews())
        appendLook(key, *subview, caster, traits);
}

/// What `view` and its subviews may cover, in `view`'s coordinates.
CGRect extent(const UIView& view) {
    CGRect covered = view.presentation().bounds;
    if (view.layer().masksToBounds())
        return covered;
    for (const UIView* const subview : view.subviews())
        if (!subview->isHidden())
            covered = covered.unionWith(subview->presentation().toSuperview().apply(extent(*subview)));
    return covered;
}

bool isEmpty(const QImage& outline) {
    for (int y = 0; y < outline.height(); ++y) {
        const uchar* const row = outline.constScanLine(y);
        if (std::any_of(row, row + outline.width(), [](uchar coverage) { return coverage > 0; }))
            return false;
    }
    return true;
}

ShadowCache::Shadow makeShadow(const UIView& view, double pixelsPerPoint, const QColor& color,
                               const ShadowCache::DrawCaster& drawCaster) {
    const double deviation = view.layer().shadowRadius() * pixelsPerPoint;
    const double margin = 3 * view.layer().shadowRadius() + 1;
    const CGRect covered = extent(view).insetBy(-margin, -margin);
    QImage caster(static_cast<int>(std::ceil(covered.size.width * pixelsPerPoint)),
                  static_cast<int>(std::ceil(covered.size.height * pixelsPerPoint)),
                  QImage::Format_ARGB32_Premultiplied);
    caster.fill(Qt::transparent);
    drawCaster(caster, toQt(covered.origin));

    const QImage outline = caster.convertToFormat(QImage::Format_Alpha8);
    if (isEmpty(outline))
        return {QImage(), toQt(covered.origin)};
    const QImage blurred = gaussianBlur(outline, deviation);
    QImage image = blurred.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return {image, toQt(covered.origin)};
}

} // namespace

bool ShadowCache::coversItsBounds(const UIView& view, const UITraitCollection& traits) {
    const std::optional<UIColor>& background = view.presentation().backgroundColor;
    return view.layer().masksToBounds() && background && background->resolve(traits).alpha >= 1;
}

const ShadowCache::Shadow& ShadowCache::shadow(const UIView& view, double pixelsPerPoint,
                                               const UITraitCollection& traits,
                                               const DrawCaster& drawCaster) {
    const CALayer& layer = view.layer();
    QColor color = toQt(layer.shadowColor().resolve(traits));
    color.setAlphaF(static_cast<float>(color.alphaF() * layer.shadowOpacity()));
    std::string key;
    append(key, pixelsPerPoint);
    append(key, color.rgba());
    append(key, layer.shadowRadius());
    appendLook(key, view, view, traits);
    if (const auto found = shadows_.find(key); found != shadows_.end())
        return found->second;
    if (shadows_.size() >= capacity)
        shadows_.clear();
    return shadows_.emplace(std::move(key), makeShadow(view, pixelsPerPoint, color, drawCaster))
        .first->second;
}

} // namespace sela
