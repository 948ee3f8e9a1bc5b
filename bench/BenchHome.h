#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace sela {

/// A home folder of its own below the temporary folder for a benchmark that writes settings; removed at the
/// end.
class BenchHome {
public:
    BenchHome() {
        if (!::mkdtemp(path_.data()))
            std::abort();
        ::setenv("XDG_DATA_HOME", (path_ + "/data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (path_ + "/config").c_str(), 1);
    }
    ~BenchHome() { std::filesystem::remove_all(path_); }
    BenchHome(const BenchHome&) = delete;
    BenchHome& operator=(const BenchHome&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_ = (std::filesystem::temp_directory_path() / "sela-bench-XXXXXX").string();
};

} // namespace sela
