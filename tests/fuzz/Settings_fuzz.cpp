#include "fuzz/FuzzTarget.h"
#include "platform/foundation/SettingsDatabase.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

/// The settings file of this process, in memory.
const std::string& settingsFile() {
    static const std::string path = [] {
        const std::string folder = "/dev/shm/sela-fuzz-" + std::to_string(::getpid());
        std::filesystem::create_directories(folder);
        std::atexit([] { std::filesystem::remove_all("/dev/shm/sela-fuzz-" + std::to_string(::getpid())); });
        return folder + "/settings.sqlite3";
    }();
    return path;
}

} // namespace

// Uses arbitrary bytes as the settings file, reads from it and stores in it.
void fuzz(sela::DataView input) {
    std::remove((settingsFile() + "-journal").c_str());
    std::remove(settingsFile().c_str());
    std::ofstream(settingsFile(), std::ios::binary) << sela::asText(input);
    const auto database = sela::SettingsDatabase::open(settingsFile(), std::chrono::milliseconds(0));
    if (!database)
        return;
    for (const char* kind : {"text", "data"})
        for (const char* key : {"sharedAlbums", "sharedPassword", "sharedItems"})
            (void)database.value()->read(key, kind);
    (void)database.value()->keys("sharedItems.unreadable.");
    if (database.value()->begin())
        return;
    sela::ErrorRef failure = database.value()->write("sharedItems", "data", sela::asData("{}"));
    if (!failure)
        failure = database.value()->remove("sharedAlbums");
    database.value()->end(failure);
}
