#pragma once

#include "platform/uikit/UIFont.h"

#include <QFont>

#include <map>
#include <string>
#include <tuple>

namespace sela {

/// The fonts behind `UIFont`: Roboto for the system font and wherever a named family is missing, with the
/// system's fonts for scripts that it lacks. Main thread only, while a QGuiApplication exists.
class FontCache {
public:
    /// `font` at its size in points of the view kit; made once.
    const QFont& font(const UIFont& font);

private:
    using Key = std::tuple<std::string, UIFont::Weight, double>;
    std::map<Key, QFont> fonts_;
};

} // namespace sela
