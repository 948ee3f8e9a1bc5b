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
/// and border, antialiased, by the presentation. Expensive results (scaled pictures, blurred shadows, line
/// breaks) are cached between drawings. Main thread only.
class ViewPainter {
public:
    /// `measurer` must outlive the painter.
    explicit ViewPainter(const QtTextMeasurer& measurer) : measurer_(measurer) {}

    /// The mapping from points of the tree's root to pixels of a picture.
    struct Screen {
        double pixelsPerPoint = 1;
        UITraitCollection traits;
    };

    /// Draws `root` and its subviews onto `target` (Format_ARGB32_Premultiplied or RGB32), within `area`
    /// (pixels). The origin of the root's superview coordinates is the target's top left pixel.
    void paint(QImage& target, const QRect& area, const UIView& root, const Screen& screen);

private:
    void paintView(QPainter& painter, const UIView& view);
    void paintGroup(QPainter& painter, const UIView& view, double opacity, bool masks);
    void paintRounded(QPainter& painter, const UIView& view);
    void paintInside(QPainter& painter, const UIView& view, bool roundsBackground);
    void paintWithin(QPainter& painter, const UIView& view, const QRect& pixels);
    void paintBackground(QPainter& painter, const UIView& view, const QRegion& visible, bool rounds);
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
    bool paintsCaster_ = false; ///< only coverage matters, for a shadow
};

} // namespace sela
