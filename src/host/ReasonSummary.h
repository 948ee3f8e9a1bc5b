#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// Which files were not added and why, in short, for the card and for notifications: "a.txt, b.txt: the file
/// is empty". Files with the same reason share a line of at most three names, in which a long name loses its
/// middle; there are at most three lines. "… + 2" stands for two more. A value.
class ReasonSummary {
public:
    /// `name` is empty for a picture without one, and `reason` for a file that was not tried; not both.
    void add(const std::string& name, const std::string& reason);

    /// The lines, in the order in which their reasons were added first; empty when nothing was.
    std::string text() const;

private:
    struct Line {
        std::string reason;
        std::vector<std::string> names;
        std::size_t files = 0;
    };

    static std::string text(const Line& line);

    std::vector<Line> lines_;
};

} // namespace sela
