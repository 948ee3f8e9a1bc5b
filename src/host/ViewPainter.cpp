#include "host/ViewPainter.h"

#include "host/CoveredPixels.h"
#include "host/PixelGrid.h"
#include "host/QtConversions.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sela {

namespace {

/// Below this alpha nothing can be seen in 8 bits.
constexpr double invisibleAlpha = 0.002;

void setHints(QPainter& painter) {
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
}

void fillDevicePath(QPainter& painter, const QPainterPath& path, const QColor& color) {
    const QTransform transform = painter.worldTransform();
    painter.resetTransform();
    painter.fillPath(path, color);
    painter.setWorldTransform(transform);
}

/// The whole pixels that a view's background fills, so that edges between pixels are rounded as those of the
/// views around it. A line thinner than a pixel is one pixel thick. Only for upright views.
QRect pixelsBelow(const QPainter& painter, const CGRect& bounds) {
    if (bounds.isEmpty())
        return {};
    const QRect pixels = PixelGrid::withEdgesOnPixels(painter.worldTransform().mapRect(toQt(bounds)));
    return {pixels.topLeft(), pixels.size().expandedTo({1, 1})};
}

void fillPixels(QPainter& painter, const QRegion& pixels, const QColor& color) {
    const QTransform transform = painter.worldTransform();
    painter.resetTransform();
    for (const QRect& rect : pixels)
        painter.fillRect(rect, color);
    painter.setWorldTransform(transform);
}

QRect deviceRect(const QPainter& painter) {
    return {0, 0, painter.device()->width(), painter.device()->height()};
}

/// The pixels that are drawn to.
QRect drawnPixels(const QPainter& painter) {
    if (!painter.hasClipping())
        return deviceRect(painter);
    return painter.worldTransform().mapRect(painter.clipBoundingRect()).toAlignedRect() & deviceRect(painter);
}

QRect pixelsOf(const QPainter& painter, const CGRect& rect) {
    return painter.worldTransform().mapRect(toQt(rect)).toAlignedRect() & deviceRect(painter);
}

} // namespace

void ViewPainter::paint(QImage& target, const QRect& area, const UIView& root, const Screen& screen) {
    screen_ = screen;
    QPainter painter(&target);
    setHints(painter);
    painter.setClipRect(area);
    painter.scale(screen.pixelsPerPoint, screen.pixelsPerPoint);
    paintView(painter, root);
}

QColor ViewPainter::color(const UIColor& color) const {
    return toQt(color.resolve(screen_.traits));
}

void ViewPainter::paintView(QPainter& painter, const UIView& view) {
    const UIView::Presentation shown = view.presentation();
    if (view.isHidden() || shown.alpha < invisibleAlpha)
        return;
    const QTransform toSuperview = toQt(shown.toSuperview());
    if (!toSuperview.isInvertible())
        return;
    painter.save();
    painter.setWorldTransform(toSuperview, true);
    const bool masks = view.layer().masksToBounds();
    const bool isOutside = masks && !pixelsOf(painter, shown.bounds).intersects(drawnPixels(painter));
    if (paintsCaster_ && ShadowCache::coversItsBounds(view, screen_.traits)) {
        painter.setOpacity(painter.opacity() * shown.alpha);
        paintBackground(painter, view, drawnPixels(painter), true);
    } else if (!isOutside) {
        const bool needsShape =
            masks && (view.layer().cornerRadius() > 0 || !PixelGrid::isUpright(painter.worldTransform()));
        const bool needsOneOpacity = shown.alpha < 1 && !view.subviews().empty();
        const bool isOpaque = shown.alpha >= 1 && painter.opacity() >= 1;
        if (needsShape && isOpaque &&
            PixelGrid::isAtScale(painter.worldTransform(), screen_.pixelsPerPoint)) {
            paintRounded(painter, view);
        } else if (needsShape || needsOneOpacity) {
            if (!masks)
                paintShadow(painter, view);
            paintGroup(painter, view, shown.alpha, masks);
        } else {
            if (!masks)
                paintShadow(painter, view);
            painter.setOpacity(painter.opacity() * shown.alpha);
            if (masks)
                painter.setClipRect(toQt(shown.bounds), Qt::IntersectClip);
            paintInside(painter, view, true);
        }
    }
    painter.restore();
}

/// Draws the view into a picture of its own, which is then clipped to the rounded bounds and composited onto
/// the target. The picture's position does not depend on which part of it is drawn, so that coordinates
/// between pixels are always rounded the same way.
void ViewPainter::paintGroup(QPainter& painter, const UIView& view, double opacity, bool masks) {
    const CGRect bounds = view.presentation().bounds;
    const QRect place = masks ? pixelsOf(painter, bounds) : deviceRect(painter);
    const QRect drawn = (drawnPixels(painter) & place).translated(-place.topLeft());
    if (drawn.isEmpty())
        return;
    QImage group(place.size(), QImage::Format_ARGB32_Premultiplied);
    {
        QPainter inside(&group);
        setHints(inside);
        inside.setClipRect(drawn);
        inside.setCompositionMode(QPainter::CompositionMode_Source);
        inside.fillRect(drawn, Qt::transparent);
        inside.setCompositionMode(QPainter::CompositionMode_SourceOver);
        inside.setWorldTransform(painter.worldTransform() *
                                 QTransform::fromTranslate(-place.x(), -place.y()));
        paintInside(inside, view, !masks);
        if (masks) {
            QPainterPath outside;
            outside.addRect(QRectF(group.rect()).adjusted(-1, -1, 1, 1));
            outside.addPath(PixelGrid::roundedPath(inside.worldTransform(), bounds,
                                                   view.layer().cornerRadius(), screen_.pixelsPerPoint));
            inside.resetTransform();
            inside.setCompositionMode(QPainter::CompositionMode_DestinationOut);
            inside.fillPath(outside, Qt::black);
        }
    }
    painter.resetTransform();
    painter.setOpacity(painter.opacity() * opacity);
    painter.drawImage(place.topLeft() + drawn.topLeft(), group, drawn);
}

/// Draws the view onto the target itself, and gives the pixels outside of its corners back what they showed:
/// the same picture as of `paintGroup`, without a second one that is filled and composited.
void ViewPainter::paintRounded(QPainter& painter, const UIView& view) {
    const QTransform transform = painter.worldTransform();
    const QRect place = PixelGrid::withEdgesOnPixels(transform.mapRect(toQt(view.presentation().bounds)));
    const QRect drawn = place & drawnPixels(painter);
    if (drawn.isEmpty())
        return;
    struct Corner {
        QPainterPath outside;
        QRect pixels;
        QImage before;
    };
    std::vector<Corner> corners;
    for (const QPainterPath& outside :
         PixelGrid::outsideOfCorners(place, view.layer().cornerRadius() * screen_.pixelsPerPoint)) {
        const QRect pixels = outside.boundingRect().toAlignedRect() & drawn;
        if (!pixels.isEmpty())
            corners.push_back({outside, pixels, static_cast<const QImage*>(painter.device())->copy(pixels)});
    }
    painter.resetTransform();
    painter.setClipRect(drawn, Qt::IntersectClip);
    painter.setWorldTransform(transform);
    paintInside(painter, view, false);

    painter.resetTransform();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const Corner& corner : corners) {
        QBrush before(corner.before);
        before.setTransform(QTransform::fromTranslate(corner.pixels.x(), corner.pixels.y()));
        painter.fillPath(corner.outside, before);
    }
}

void ViewPainter::paintInside(QPainter& painter, const UIView& view, bool roundsBackground) {
    // What is covered is not drawn: a screen below one that slides over it, the display's dimming below the
    // card.
    const QRect drawn = drawnPixels(painter);
    QRegion visible(drawn);
    const std::vector<UIView*>& subviews = view.subviews();
    std::vector<QRect> shown(subviews.size());
    for (std::size_t i = subviews.size(); i-- > 0;) {
        shown[i] = visible.boundingRect();
        visible -=
            coveredPixels(*subviews[i], painter.worldTransform(), screen_.pixelsPerPoint, screen_.traits);
    }
    if (!visible.isEmpty()) {
        paintBackground(painter, view, visible, roundsBackground);
        std::visit([&](const auto& content) { paintContent(painter, view, content); }, view.content());
    }
    for (std::size_t i = 0; i < subviews.size(); ++i) {
        if (shown[i] == drawn)
            paintView(painter, *subviews[i]);
        else if (!shown[i].isEmpty())
            paintWithin(painter, *subviews[i], shown[i]);
    }
    paintBorder(painter, view);
}

/// Draws no other pixels than these.
void ViewPainter::paintWithin(QPainter& painter, const UIView& view, const QRect& pixels) {
    painter.save();
    const QTransform transform = painter.worldTransform();
    painter.resetTransform();
    painter.setClipRect(pixels, Qt::IntersectClip);
    painter.setWorldTransform(transform);
    paintView(painter, view);
    painter.restore();
}

void ViewPainter::paintBackground(QPainter& painter, const UIView& view, const QRegion& visible,
                                  bool rounds) {
    const UIView::Presentation shown = view.presentation();
    if (!shown.backgroundColor)
        return;
    const QColor fill = color(*shown.backgroundColor);
    if (rounds && view.layer().cornerRadius() > 0)
        fillDevicePath(painter,
                       PixelGrid::roundedPath(painter.worldTransform(), shown.bounds,
                                              view.layer().cornerRadius(), screen_.pixelsPerPoint),
                       fill);
    else if (rounds && !PixelGrid::isUpright(painter.worldTransform()))
        painter.fillRect(toQt(shown.bounds), fill);
    else
        fillPixels(painter, rounds ? visible & pixelsBelow(painter, shown.bounds) : visible, fill);
}

void ViewPainter::paintShadow(QPainter& painter, const UIView& view) {
    if (view.layer().shadowOpacity() <= 0)
        return;
    const double pixelsPerPoint = screen_.pixelsPerPoint;
    const ShadowCache::Shadow& shadow =
        shadows_.shadow(view, pixelsPerPoint, screen_.traits, [&](QImage& picture, QPointF origin) {
            QPainter inside(&picture);
            setHints(inside);
            inside.scale(pixelsPerPoint, pixelsPerPoint);
            inside.translate(-origin);
            const bool before = std::exchange(paintsCaster_, true);
            paintInside(inside, view, true);
            paintsCaster_ = before;
        });
    if (shadow.image.isNull())
        return;
    const CGSize offset = view.layer().shadowOffset();
    const QRectF target(shadow.origin + QPointF(offset.width, offset.height),
                        QSizeF(shadow.image.size()) / pixelsPerPoint);
    painter.save();
    painter.setOpacity(painter.opacity() * view.presentation().alpha);
    painter.drawImage(target, shadow.image);
    painter.restore();
}

void ViewPainter::paintBorder(QPainter& painter, const UIView& view) {
    const double width = view.layer().borderWidth();
    if (width <= 0)
        return;
    const CGRect bounds = view.presentation().bounds;
    const auto path = [&](const CGRect& rect, double radius) {
        return PixelGrid::roundedPath(painter.worldTransform(), rect, radius, screen_.pixelsPerPoint);
    };
    QPainterPath frame = path(bounds, view.layer().cornerRadius());
    const CGRect hole = bounds.insetBy(width, width);
    if (!hole.isEmpty())
        frame.addPath(path(hole, view.layer().cornerRadius() - width));
    fillDevicePath(painter, frame, color(view.layer().borderColor()));
}

void ViewPainter::paintContent(QPainter& painter, const UIView& view, const TextContent& content) {
    const CGRect bounds = view.presentation().bounds;
    const NSAttributedString& text = content.text;
    if (text.isEmpty() || bounds.isEmpty())
        return;
    const double width = bounds.size.width;
    std::shared_ptr<const TextLayout> layout =
        measurer_.layout(text, width, content.maximumLines, screen_.traits);
    if (layout->lineCount() > 1 && layout->size().height > bounds.size.height + 1) {
        const double lineHeight = layout->size().height / layout->lineCount();
        const int fitting = std::max(1, static_cast<int>((bounds.size.height + 1) / lineHeight));
        layout = measurer_.layout(text, width, fitting, screen_.traits);
    }
    layout->draw(painter, bounds, content.alignment);
}

void ViewPainter::paintContent(QPainter& painter, const UIView& view, const ImageContent& content) {
    const CGRect& whole = content.rect;
    const UIImage& image = content.image;
    if (whole.isEmpty())
        return;
    const std::optional<QColor> tint = content.isTemplate ? std::optional(color(content.tint)) : std::nullopt;
    const double scale = screen_.pixelsPerPoint;
    if (!image.pixels()) {
        // Vectors are placed on whole pixels, where thin lines stay sharp.
        const QSize size = (QSizeF(whole.size.width, whole.size.height) * scale).toSize();
        const QImage rendered = images_.scaled(image, {0, 0, 1, 1}, size, tint);
        QRectF target(toQt(whole.origin), QSizeF(size) / scale);
        const QTransform transform = painter.worldTransform();
        if (PixelGrid::isUpright(transform) && transform.m11() == scale && transform.m22() == scale) {
            const QPointF corner = transform.map(target.topLeft()).toPoint();
            target.moveTopLeft(transform.inverted().map(corner));
        }
        painter.drawImage(target, content.isFlipped ? rendered.mirrored(true, false) : rendered);
        return;
    }
    const CGRect visible = view.clipsToBounds() ? whole.intersection(view.presentation().bounds) : whole;
    if (visible.isEmpty())
        return;
    const QRectF part((visible.minX() - whole.minX()) / whole.size.width,
                      (visible.minY() - whole.minY()) / whole.size.height,
                      visible.size.width / whole.size.width, visible.size.height / whole.size.height);
    const QTransform transform = painter.worldTransform();
    QRectF target = toQt(visible);
    QSize size = (target.size() * scale).toSize().expandedTo({1, 1});
    if (PixelGrid::isAtScale(transform, scale)) {
        const QRectF pixels = PixelGrid::withEdgesOnPixels(transform.mapRect(target));
        size = pixels.size().toSize().expandedTo({1, 1});
        target = transform.inverted().mapRect(pixels);
    }
    const QImage scaled = images_.scaled(image, part, size, tint);
    painter.drawImage(target, content.isFlipped ? scaled.mirrored(true, false) : scaled);
}

void ViewPainter::paintContent(QPainter& painter, const UIView& view, const SpinnerContent& content) {
    constexpr double innerRadius = 0.24;
    constexpr double outerRadius = 0.46;
    constexpr double thickness = 0.11;
    constexpr double faintest = 0.18;
    const int spokes = content.spokes;

    const CGRect bounds = view.presentation().bounds;
    const double side = std::min(bounds.size.width, bounds.size.height);
    painter.save();
    painter.translate(toQt(bounds.center()));
    painter.rotate(360.0 / spokes * content.leadingSpoke);
    for (int age = 0; age < spokes; ++age) {
        const double strength = 1 - static_cast<double>(age) / spokes;
        QColor shade = color(content.color);
        shade.setAlphaF(static_cast<float>(shade.alphaF() * std::max(strength, faintest)));
        const QRectF spoke(-thickness / 2 * side, -outerRadius * side, thickness * side,
                           (outerRadius - innerRadius) * side);
        QPainterPath path;
        path.addRoundedRect(spoke, thickness / 2 * side, thickness / 2 * side);
        painter.fillPath(path, shade);
        painter.rotate(-360.0 / spokes);
    }
    painter.restore();
}

} // namespace sela
