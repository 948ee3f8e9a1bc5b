#pragma once

#include <QImage>

namespace sela {

/// Blurs the coverage of a picture: takes and gives Format_Alpha8 of the same size; `deviation` is the
/// Gaussian's standard deviation in pixels (0 or less: no change). What lies outside the picture counts as
/// empty, so leave a margin of three deviations. Any thread.
QImage gaussianBlur(const QImage& coverage, double deviation);

} // namespace sela
