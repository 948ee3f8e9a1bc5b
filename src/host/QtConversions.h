#pragma once

#include "platform/uikit/Geometry.h"
#include "platform/uikit/UIColor.h"

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QTransform>

namespace sela {

/// The view kit's values as Qt's, and back. Any thread may use them.

inline QPointF toQt(CGPoint point) {
    return {point.x, point.y};
}

inline QRectF toQt(const CGRect& rect) {
    return {rect.minX(), rect.minY(), rect.size.width, rect.size.height};
}

inline QTransform toQt(const CGAffineTransform& transform) {
    return {transform.a, transform.b, transform.c, transform.d, transform.tx, transform.ty};
}

inline QColor toQt(const RGBA& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

inline CGRect toCGRect(const QRectF& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

} // namespace sela
