#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace sela {

/// A key that works a view whatever has the keyboard's focus, for as long as a finger could reach the view.
/// A value.
struct UIKeyCommand {
    /// Inputs of keys that type nothing visible.
    static constexpr std::string_view inputEscape = "UIKeyInputEscape";
    static constexpr std::string_view inputReturn = "\r";
    static constexpr std::string_view inputDelete = "\b"; ///< Backspace

    std::string input;            ///< one of these, or the character that the key types
    std::function<void()> action; ///< empty: a tap on the view
};

} // namespace sela
