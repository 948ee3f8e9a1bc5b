#include "host/ViewPainter.h"

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

QPainterPath roundedPath(const CGRect& rect, double radius) {
    const double largest = std::min(rect.size.width, rect.size.height) / 2;
    const double shown = std::clamp(radius, 0.0, std::max(largest, 0.0));
    QPainterPath path;
    path.addRoundedRect(toQt(rect), shown, shown);
    return path;
}

/// Whether the transform keeps rectangles axis-aligned.
bool isUpright(const QTransform& transform) {
    return transform.m12() == 0 && transform.m21() == 0;
}

/// Whether a point of the view is the usual number of pixels in each direction, so that its edges can be
/// snapped to whole pixels without distortion.
bool isAtScale(const QTransform& transform, double pixelsPerPoint) {
    constexpr double tolerance = 1e-6;
    return isUpright(transform) && std::abs(transform.m11() - pixelsPerPoint) < tolerance &&
           std::abs(transform.m22() - pixelsPerPoint) < tolerance;
}

QRectF withEdgesOnPixels(const QRectF& rect) {
    const QPointF begin = rect.topLeft().toPoint();
    return {begin, QPointF(rect.bottomRight().toPoint())};
}

/// A rounded rectangle in pixels; its edges lie on whole pixels unless it is scaled or rotated, so that they
/// are sharp.
QPainterPath devicePath(const QTransform& transform, const CGRect& rect, double radius,
                        double pixelsPerPoint) {
    if (!isAtScale(transform, pixelsPerPoint))
        return transform.map(roundedPath(rect, radius));
    const QRectF pixels = withEdgesOnPixels(transform.mapRect(toQt(rect)));
    return roundedPath({pixels.x(), pixels.y(), pixels.width(), pixels.height()}, radius * pixelsPerPoint);
}

void fillDevicePath(QPainter& painter, const QPainterPath& path, const QColor& color) {
    const QTransform transform = painter.worldTransform();
    painter.resetTransform();
    painter.fillPath(path, color);
    painter.setWorldTransform(transform);
}

/// Fills only whole pixels when the rectangle is axis-aligned, so that edges between pixels are rounded as
/// those of the views around it. A line thinner than a pixel is one pixel thick.
void fillBounds(QPainter& painter, const CGRect& bounds, const QColor& color) {
    if (bounds.isEmpty())
        return;
    const QTransform transform = painter.worldTransform();
    if (!isUpright(transform)) {
        painter.fillRect(toQt(bounds), color);
        return;
    }
    const QRectF exact = transform.mapRect(toQt(bounds));
    const QPoint begin = exact.topLeft().toPoint();
    const QPoint end = exact.bottomRight().toPoint();
    const QSize size(std::max(1, end.x() - begin.x()), std::max(1, end.y() - begin.y()));
    painter.resetTransform();
    painter.fillRect(QRect(begin, size), color);
    painter.setWorldTransform(transform);
}

QRect deviceRect(const QPainter& painter) {
    return {0, 0, painter.device()->width(), painter.device()->height()};
}

void fillEverything(QPainter& painter, const QColor& color) {
    const QTransform transform = painter.worldTransform();
    painter.resetTransform();
    painter.fillRect(deviceRect(painter), color);
    painter.setWorldTransform(transform);
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
        paintBackground(painter, view, true);
    } else if (!isOutside) {
        const bool needsShape =
            masks && (view.layer().cornerRadius() > 0 || !isUpright(painter.worldTransform()));
        const bool needsOneOpacity = shown.alpha < 1 && !view.subviews().empty();
        if (needsShape || needsOneOpacity) {
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
            outside.addPath(devicePath(inside.worldTransform(), bounds, view.layer().cornerRadius(),
                                       screen_.pixelsPerPoint));
            inside.resetTransform();
            inside.setCompositionMode(QPainter::CompositionMode_DestinationOut);
            inside.fillPath(outside, Qt::black);
        }
    }
    painter.resetTransform();
    painter.setOpacity(painter.opacity() * opacity);
    painter.drawImage(place.topLeft() + drawn.topLeft(), group, drawn);
}

void ViewPainter::paintInside(QPainter& painter, const UIView& view, bool roundsBackground) {
    paintBackground(painter, view, roundsBackground);
    std::visit([&](const auto& content) { paintContent(painter, view, content); }, view.content());
    for (const UIView* const subview : view.subviews())
        paintView(painter, *subview);
    paintBorder(painter, view);
}

void ViewPainter::paintBackground(QPainter& painter, const UIView& view, bool rounds) {
    const UIView::Presentation shown = view.presentation();
    if (!shown.backgroundColor)
        return;
    if (!rounds)
        fillEverything(painter, color(*shown.backgroundColor));
    else if (view.layer().cornerRadius() > 0)
        fillDevicePath(painter,
                       devicePath(painter.worldTransform(), shown.bounds, view.layer().cornerRadius(),
                                  screen_.pixelsPerPoint),
                       color(*shown.backgroundColor));
    else
        fillBounds(painter, shown.bounds, color(*shown.backgroundColor));
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
        return devicePath(painter.worldTransform(), rect, radius, screen_.pixelsPerPoint);
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
        if (isUpright(transform) && transform.m11() == scale && transform.m22() == scale) {
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
    if (isAtScale(transform, scale)) {
        const QRectF pixels = withEdgesOnPixels(transform.mapRect(target));
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
