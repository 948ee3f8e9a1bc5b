#include "platform/uikit/Geometry.h"

#include "platform/foundation/FatalError.h"

#include <algorithm>
#include <cmath>

namespace sela {

bool CGRect::contains(CGPoint point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
}

CGRect CGRect::insetBy(double dx, double dy) const {
    return {minX() + dx, minY() + dy, size.width - 2 * dx, size.height - 2 * dy};
}

CGRect CGRect::offsetBy(double dx, double dy) const {
    return {minX() + dx, minY() + dy, size.width, size.height};
}

CGRect CGRect::around(const std::array<CGPoint, 4>& points) {
    const auto [left, right] = std::ranges::minmax(points, {}, &CGPoint::x);
    const auto [top, bottom] = std::ranges::minmax(points, {}, &CGPoint::y);
    return {left.x, top.y, right.x - left.x, bottom.y - top.y};
}

CGRect CGRect::unionWith(const CGRect& other) const {
    if (isEmpty())
        return other.isEmpty() ? CGRect() : other;
    if (other.isEmpty())
        return *this;
    const double left = std::min(minX(), other.minX());
    const double top = std::min(minY(), other.minY());
    return {left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
}

CGRect CGRect::intersection(const CGRect& other) const {
    const double left = std::max(minX(), other.minX());
    const double top = std::max(minY(), other.minY());
    const CGRect common(left, top, std::min(maxX(), other.maxX()) - left,
                        std::min(maxY(), other.maxY()) - top);
    return common.isEmpty() ? CGRect() : common;
}

CGRect inset(const CGRect& rect, const UIEdgeInsets& insets) {
    return {rect.minX() + insets.left, rect.minY() + insets.top,
            std::max(0.0, rect.size.width - insets.left - insets.right),
            std::max(0.0, rect.size.height - insets.top - insets.bottom)};
}

CGAffineTransform CGAffineTransform::translation(double x, double y) {
    return {1, 0, 0, 1, x, y};
}

CGAffineTransform CGAffineTransform::scale(double x, double y) {
    return {x, 0, 0, y, 0, 0};
}

CGAffineTransform CGAffineTransform::rotation(double radians) {
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    return {cosine, sine, -sine, cosine, 0, 0};
}

bool CGAffineTransform::isInvertible() const {
    const double determinant = a * d - b * c;
    return std::isfinite(determinant) && determinant != 0;
}

CGAffineTransform CGAffineTransform::inverted() const {
    if (!isInvertible())
        fatalError("CGAffineTransform: the map flattens the plane and cannot be undone");
    const double determinant = a * d - b * c;
    return {d / determinant,
            -b / determinant,
            -c / determinant,
            a / determinant,
            (c * ty - d * tx) / determinant,
            (b * tx - a * ty) / determinant};
}

CGAffineTransform CGAffineTransform::concatenating(const CGAffineTransform& next) const {
    return {a * next.a + b * next.c,
            a * next.b + b * next.d,
            c * next.a + d * next.c,
            c * next.b + d * next.d,
            tx * next.a + ty * next.c + next.tx,
            tx * next.b + ty * next.d + next.ty};
}

CGPoint CGAffineTransform::apply(CGPoint point) const {
    return {a * point.x + c * point.y + tx, b * point.x + d * point.y + ty};
}

CGRect CGAffineTransform::apply(const CGRect& rect) const {
    return CGRect::around({apply({rect.minX(), rect.minY()}), apply({rect.maxX(), rect.minY()}),
                           apply({rect.minX(), rect.maxY()}), apply({rect.maxX(), rect.maxY()})});
}

} // namespace sela
