#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace sela {

/// A key that activates a view whatever has the keyboard focus, as long as the view can be touched. A value.
struct UIKeyCommand {
    /// Inputs of keys that type nothing visible.
    static constexpr std::string_view inputEscape = "UIKeyInputEscape";
    static constexpr std::string_view inputReturn = "\r";
    static constexpr std::string_view inputDelete = "\b"; ///< Backspace

    std::string input;            ///< one of these, or the character that the key types
    std::function<void()> action; ///< empty: a tap on the view
};

} // namespace sela
