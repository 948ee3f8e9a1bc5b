#include "store/LedgerUpdate.h"

#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace sela {
namespace {

/// Works on the ledger at random and writes down what it did: "+name" for an item that it added, "-name" for
/// one that it took out as the main application does.
void workOnLedger(unsigned seed, const std::string& mark, const std::string& journalPath) {
    std::mt19937 chance(seed);
    std::ofstream journal(journalPath);
    for (int step = 0; step < 60; ++step) {
        if (chance() % 4 != 0) {
            const SharedItem item{mark + std::to_string(step) + ".jpg", {"A-b"}, step % 2 == 0, std::nullopt};
            bool recorded = false;
            updateLedger(item, [&](const ErrorRef& error) { recorded = !error; });
            if (recorded)
                journal << "+" << item.fileName << "\n";
            continue;
        }
        std::vector<SharedItemLedger::Entry> taken;
        std::optional<UserDefaults> defaults = sharedDefaults();
        Result<SettingsTransaction> settings = SettingsTransaction::begin(std::move(*defaults));
        if (const Result<std::optional<Data>> ledger = settings.value().readData(sharedItemsKey);
            ledger.value())
            taken = SharedItemLedger::decode(*ledger.value()).value();
        settings.value().removeObject(sharedItemsKey);
        const ErrorRef error = settings.value().commit();
        if (!error)
            for (const auto& [key, item] : taken)
                journal << "-" << item.fileName << "\n";
    }
}

TEST(LedgerUpdate, TwoProcessesAndTheMainApplicationLoseNothing) {
    const TemporaryHome home;
    const LogCapture log;
    const unsigned seed = std::random_device()();
    const std::string journals[] = {(home.path() / "first").string(), (home.path() / "second").string()};
    // Both open the settings after the fork: no connection crosses it.
    const pid_t child = ::fork();
    if (child == 0) {
        workOnLedger(seed, "child", journals[0]);
        ::_exit(0);
    }
    workOnLedger(seed + 1, "parent", journals[1]);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);

    std::multiset<std::string> added;
    std::multiset<std::string> taken;
    for (const std::string& path : journals) {
        std::ifstream journal(path);
        for (std::string line; std::getline(journal, line);)
            (line.front() == '+' ? added : taken).insert(line.substr(1));
    }
    if (const std::optional<Data> ledger = sharedDefaults()->data(sharedItemsKey)) {
        const auto entries = SharedItemLedger::decode(*ledger);
        for (const auto& [key, item] : entries.value()) {
            EXPECT_EQ(key, SharedItemLedger::key(item));
            taken.insert(item.fileName);
        }
    }
    EXPECT_FALSE(added.empty());
    EXPECT_EQ(added, taken) << "seed " << seed << ": what was added is not what came out, once each";
}

} // namespace
} // namespace sela
