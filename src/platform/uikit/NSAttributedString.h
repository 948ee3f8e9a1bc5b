#pragma once

#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIFont.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Text whose stretches carry a colour and a font. A value; any thread may use it.
class NSAttributedString {
public:
    /// How a stretch of text looks. Absent attributes are chosen where it is drawn.
    struct Attributes {
        std::optional<UIColor> foregroundColor;
        std::optional<UIFont> font;

        /// Where a line is too long, its first stretch of this kind is cut in the middle before its end is
        /// cut off.
        bool givesWay = false;

        bool operator==(const Attributes&) const = default;
    };

    /// A stretch of text (UTF-8, not empty) of one look.
    struct Run {
        std::string text;
        Attributes attributes;

        bool operator==(const Run&) const = default;
    };

    NSAttributedString() = default;
    NSAttributedString(std::string_view text) : NSAttributedString(text, Attributes()) {}
    NSAttributedString(std::string_view text, const Attributes& attributes);

    /// The stretches in order; neighbours differ in their attributes.
    const std::vector<Run>& runs() const { return runs_; }

    /// The plain text.
    std::string string() const;

    bool isEmpty() const { return runs_.empty(); }

    void append(const NSAttributedString& text);

    /// Replaces `length` bytes of the plain text from byte `location` on with `replacement`, which keeps its
    /// own attributes. The range must lie inside the text and on character boundaries.
    void replace(std::size_t location, std::size_t length, const NSAttributedString& replacement);

    /// This text with each "%@" filled by the next argument. The first "%@" of the whole text is filled each
    /// time, so one inside an argument is filled by the argument after it. Arguments left over are ignored;
    /// too few stop the process with "Not enough arguments provided for " and the description.
    NSAttributedString format(const std::vector<NSAttributedString>& arguments) const;

    /// Each stretch's text followed by its attributes in braces, for diagnostics.
    std::string description() const;

    bool operator==(const NSAttributedString&) const = default;

private:
    void appendRun(std::string_view text, const Attributes& attributes);

    std::vector<Run> runs_;
};

} // namespace sela
