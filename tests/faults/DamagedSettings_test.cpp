#include "faults/FaultyGroup.h"
#include "platform/foundation/Data.h"
#include "store/SharedFolder.h"
#include "support/TemporaryHome.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace sela {
namespace {

/// How many pages are damaged at random.
int randomDamages() {
    const char* const text = std::getenv("SELA_DAMAGES");
    return text ? std::atoi(text) : 20;
}

class DamagedSettings : public testing::Test {
protected:
    static constexpr int headerSize = 100;

    FaultyGroup group;
    std::string whole;

    void SetUp() override {
        group.reset(2);
        whole = contentOf(group.settingsFile());
        ASSERT_GT(whole.size(), 65'536u);
    }

    /// A share and an import on damaged settings terminate; a share that was reported done is recorded; one
    /// that failed leaves the file unchanged.
    void tryWith(const std::string& damaged, const std::string& what) {
        const std::string name = "3.5new.jpg";
        std::filesystem::remove(group.items() / name);
        std::filesystem::remove(group.settingsFile());
        std::ofstream(group.settingsFile(), std::ios::binary) << damaged;
        if (!group.save(name, 10)) {
            EXPECT_TRUE(contentOf(group.settingsFile()) == damaged)
                << "a failed save changed the file: " << what;
            return;
        }
        const std::optional<UserDefaults> defaults = sharedDefaults();
        const std::optional<Data> ledger = defaults ? defaults->data(sharedItemsKey) : std::nullopt;
        EXPECT_TRUE(ledger && asText(*ledger).find(name) != std::string_view::npos)
            << "a save was reported done and is not recorded: " << what;
        group.import();
    }
};

TEST_F(DamagedSettings, EveryByteOfTheHeader) {
    for (int place = 0; place < headerSize; ++place)
        for (const int value : {0, 0xFF, whole[static_cast<std::size_t>(place)] ^ 1}) {
            std::string damaged = whole;
            damaged[static_cast<std::size_t>(place)] = static_cast<char>(value);
            tryWith(damaged, "header byte " + std::to_string(place) + " = " + std::to_string(value));
        }
}

TEST_F(DamagedSettings, RandomPlacesAndLengths) {
    std::mt19937 chance(7);
    for (int i = 0; i < randomDamages(); ++i) {
        std::string damaged = whole;
        const std::size_t place = chance() % damaged.size();
        const std::size_t length = std::min<std::size_t>(chance() % 4096 + 1, damaged.size() - place);
        std::generate_n(damaged.begin() + static_cast<std::ptrdiff_t>(place), length,
                        [&] { return static_cast<char>(chance()); });
        tryWith(damaged, "damage " + std::to_string(i) + " at " + std::to_string(place));
        tryWith(whole.substr(0, place), "cut to " + std::to_string(place));
    }
}

} // namespace
} // namespace sela
