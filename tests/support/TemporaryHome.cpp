#include "support/TemporaryHome.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace sela {

namespace {

constexpr const char* groupId = "group.sela.vault";

} // namespace

TemporaryHome::TemporaryHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sela-test-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
    ::setenv("XDG_DATA_HOME", (path_ / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (path_ / "config").c_str(), 1);
}

TemporaryHome::~TemporaryHome() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryHome::container() const {
    return path_ / "data/sela/groups" / groupId;
}

void TemporaryHome::provision() const {
    std::filesystem::create_directories(container());
}

std::filesystem::path TemporaryHome::settingsFile() const {
    return path_ / "config/sela" / (std::string(groupId) + ".sqlite3");
}

std::filesystem::path TemporaryHome::write(const std::string& name, std::string_view content) const {
    std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string patternedBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 12345;
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

} // namespace sela
