#pragma once

#include "platform/uikit/UIView.h"

#include <QImage>
#include <QPointF>

#include <functional>
#include <string>
#include <unordered_map>

namespace sela {

/// Blurred shadows of views, drawn again only when what casts them looks different. Main thread only.
class ShadowCache {
public:
    struct Shadow {
        QImage image;   ///< premultiplied, in the shadow's colour; null when nothing casts one
        QPointF origin; ///< where its top left corner lies, in the view's coordinates, without the offset
    };

    /// Draws what a view and its subviews show into a picture whose pixel (0, 0) lies at `origin` of the
    /// view's coordinates.
    using DrawCaster = std::function<void(QImage& picture, QPointF origin)>;

    /// The shadow of `view`, whose `drawCaster` is called only when none is cached for its present look.
    const Shadow& shadow(const UIView& view, double pixelsPerPoint, const UITraitCollection& traits,
                         const DrawCaster& drawCaster);

    /// Whether a view and its subviews cover its rounded bounds wholly and nothing else, so that its content
    /// does not affect the shadow.
    static bool coversItsBounds(const UIView& view, const UITraitCollection& traits);

private:
    /// Shadows kept at most; beyond that all are forgotten.
    static constexpr std::size_t capacity = 32;

    std::unordered_map<std::string, Shadow> shadows_;
};

} // namespace sela
