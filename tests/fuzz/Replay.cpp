#include "fuzz/FuzzTarget.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Passes each file of the given folder to the target, and its prefixes, since truncated input breaks most
// parsers. A folder without a file is an error.
int main(int, char** argv) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        fuzz(sela::asData(content));
        for (std::size_t length = 0; length < content.size(); length += 1 + content.size() / 64)
            fuzz(sela::asData(content).first(length));
        ++files;
    }
    std::printf("%zu files\n", files);
    return files == 0;
}
