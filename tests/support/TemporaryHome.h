#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace sela {

/// A home folder of its own for one test: XDG_DATA_HOME and XDG_CONFIG_HOME point into it while this lives,
/// and it is removed afterwards. One at a time.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// The container of the group, made by `provision`.
    std::filesystem::path container() const;
    void provision() const;

    /// The settings file of the group.
    std::filesystem::path settingsFile() const;

    /// Writes a file below the home, making its folders, and returns its path.
    std::filesystem::path write(const std::string& name, std::string_view content) const;

private:
    std::filesystem::path path_;
};

/// The bytes of a file; fails the test when it cannot be read.
std::string contentOf(const std::filesystem::path& path);

/// `size` bytes that repeat with no short period, so that a block in the wrong place is detected.
std::string patternedBytes(std::size_t size);

} // namespace sela
