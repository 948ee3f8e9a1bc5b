#pragma once

#include <array>

namespace sela {

/// Points, sizes and rectangles of the view kit, in points (the screen's unit of length, independent of its
/// pixels), x to the right and y downwards. Plain values; any thread may use them.
struct CGPoint {
    double x = 0;
    double y = 0;

    bool operator==(const CGPoint&) const = default;
};

struct CGSize {
    double width = 0;
    double height = 0;

    bool operator==(const CGSize&) const = default;
};

struct CGRect {
    CGPoint origin;
    CGSize size;

    CGRect() = default;
    CGRect(CGPoint rectOrigin, CGSize rectSize) : origin(rectOrigin), size(rectSize) {}
    CGRect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}

    double minX() const { return origin.x; }
    double minY() const { return origin.y; }
    double midX() const { return origin.x + size.width / 2; }
    double midY() const { return origin.y + size.height / 2; }
    double maxX() const { return origin.x + size.width; }
    double maxY() const { return origin.y + size.height; }
    CGPoint center() const { return {midX(), midY()}; }

    /// Whether it covers no area (a width or height of 0 or less).
    bool isEmpty() const { return size.width <= 0 || size.height <= 0; }

    /// Whether the point lies inside; the right and bottom edges do not belong to the rectangle.
    bool contains(CGPoint point) const;

    /// This rectangle with each edge moved inwards by `dx` and `dy` (outwards when negative).
    CGRect insetBy(double dx, double dy) const;

    /// The same size moved by `dx` and `dy`.
    CGRect offsetBy(double dx, double dy) const;

    /// The smallest upright rectangle around four points.
    static CGRect around(const std::array<CGPoint, 4>& points);

    /// The smallest rectangle around both; an empty one counts as nothing.
    CGRect unionWith(const CGRect& other) const;

    /// The area that both cover; an empty rectangle when there is none.
    CGRect intersection(const CGRect& other) const;

    bool operator==(const CGRect&) const = default;
};

struct UIEdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    bool operator==(const UIEdgeInsets&) const = default;
};

/// The rectangle inside the insets; its size never falls below 0.
CGRect inset(const CGRect& rect, const UIEdgeInsets& insets);

/// An affine map of the plane: (x, y) becomes (a x + c y + tx, b x + d y + ty). The default is the identity.
struct CGAffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;

    static CGAffineTransform translation(double x, double y);
    static CGAffineTransform scale(double x, double y);

    /// Turns by `radians`, clockwise on the screen.
    static CGAffineTransform rotation(double radians);

    bool isIdentity() const { return *this == CGAffineTransform{}; }

    /// Whether it is invertible: a map that flattens the plane (a scale of 0) is not.
    bool isInvertible() const;

    /// The inverse; the process stops when there is none.
    CGAffineTransform inverted() const;

    /// First this map, then `next`.
    CGAffineTransform concatenating(const CGAffineTransform& next) const;

    CGPoint apply(CGPoint point) const;

    /// The smallest upright rectangle around the mapped one.
    CGRect apply(const CGRect& rect) const;

    bool operator==(const CGAffineTransform&) const = default;
};

} // namespace sela
