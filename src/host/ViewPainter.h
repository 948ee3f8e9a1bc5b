#pragma once

#include "host/ImageCache.h"
#include "host/QtTextMeasurer.h"
#include "host/ShadowCache.h"
#include "platform/uikit/UIView.h"

#include <QImage>

#include <variant>

class QPainter;

namespace sela {

/// Draws a view tree as it is shown at this moment: for each view its shadow, background, content, subviews
/// and border, antialiased, by the presentation. What is costly to make (scaled pictures, blurred shadows,
/// broken lines) is kept from one drawing to the next. Main thread only.
class ViewPainter {
public:
    /// `measurer` must outlive the painter.
    explicit ViewPainter(const QtTextMeasurer& measurer) : measurer_(measurer) {}

    /// How the points of the tree's root become the pixels of a picture.
    struct Screen {
        double pixelsPerPoint = 1;
        UITraitCollection traits;
    };

    /// Draws `root` and what is in it over what `target` (Format_ARGB32_Premultiplied or RGB32) holds, within
    /// `area` (pixels). The root's superview coordinates start at the target's top left pixel.
    void paint(QImage& target, const QRect& area, const UIView& root, const Screen& screen);

private:
    void paintView(QPainter& painter, const UIView& view);
    void paintGroup(QPainter& painter, const UIView& view, double opacity, bool masks);
    void paintInside(QPainter& painter, const UIView& view, bool roundsBackground);
    void paintBackground(QPainter& painter, const UIView& view, bool rounds);
    void paintShadow(QPainter& painter, const UIView& view);
    void paintBorder(QPainter& painter, const UIView& view);
    void paintContent(QPainter&, const UIView&, const std::monostate&) {}
    void paintContent(QPainter& painter, const UIView& view, const TextContent& content);
    void paintContent(QPainter& painter, const UIView& view, const ImageContent& content);
    void paintContent(QPainter& painter, const UIView& view, const SpinnerContent& content);
    QColor color(const UIColor& color) const;

    const QtTextMeasurer& measurer_;
    ImageCache images_;
    ShadowCache shadows_;
    Screen screen_;
    bool paintsCaster_ = false; ///< only what is covered matters, for a shadow
};

} // namespace sela
