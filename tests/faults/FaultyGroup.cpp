#include "faults/FaultyGroup.h"

#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "store/SharedItemManager.h"
#include "support/DiskWrapper.h"
#include "support/TemporaryHome.h"
#include "vault/Import.h"
#include "vault/Publishing.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <unistd.h>

namespace sela {

namespace {

namespace fs = std::filesystem;

/// The suffix of the names of files with a long record.
constexpr const char* longEnding = ".5long.jpg";

/// A file system without hard links, as between two disks.
class NoLinks : public DiskWrapper {
    int link(const std::string&, const std::string&) override { return -EXDEV; }
};

void write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

/// The passcode beside the catalogue of that number: the vault's, or the decoy's with another first digit.
Secret passcodeOf(int number, char first) {
    return Secret(first + std::to_string(100 + number));
}

std::string cover(int number) {
    return "cover " + std::to_string(number);
}

SharedItem item(const std::string& fileName) {
    const std::size_t length = fileName.ends_with(longEnding) ? 40'000 : 5;
    return {fileName, {"Trips", "Rome"}, false, std::string(length, 'n') + ".jpg"};
}

/// A new process has no connection to the settings: opening another suite replaces the one that is kept.
void forgetConnection() {
    (void)UserDefaults::withSuiteName("another");
}

template<class Save>
bool runSave(Save save) {
    forgetConnection();
    HeadlessMainLoop loop;
    const ScopedMainQueue scope(loop);
    bool done = false;
    save([&](const ErrorRef& error) { done = !error; });
    loop.run();
    return done;
}

} // namespace

FaultyGroup::FaultyGroup() {
    // In memory where possible: the tests simulate the disk themselves, and thousands of runs call fsync.
    const fs::path memory = "/dev/shm";
    const bool usable = ::access(memory.c_str(), W_OK) == 0;
    std::string pattern = ((usable ? memory : fs::temp_directory_path()) / "sela-faults-XXXXXX").string();
    top_ = ::mkdtemp(pattern.data());
    home_ = top_ / "home";
    ::setenv("XDG_DATA_HOME", (home_ / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home_ / "config").c_str(), 1);
    for (const int number : {1, 2}) {
        const std::string name = "cover" + std::to_string(number) + ".jpg";
        write(top_ / "publish" / name, cover(number));
        write(top_ / "publish" / (std::to_string(number) + ".json"),
              R"([{"namePath":[")" + std::to_string(number) + R"("],"fake":false,"thumbNailName":")" + name +
                  "\"}]");
    }
}

FaultyGroup::~FaultyGroup() {
    std::error_code ignored;
    fs::remove_all(top_, ignored);
}

void FaultyGroup::reset(int entries, Records records) {
    fs::remove_all(home_);
    before_.clear();
    for (int i = 0; i < entries; ++i)
        before_.insert(std::to_string(i) + (records == Records::longOnes ? longEnding : ".5before.jpg"));
    // Made once and copied from then on.
    const fs::path made = top_ / ((records == Records::longOnes ? "long" : "made") + std::to_string(entries));
    if (!fs::exists(made)) {
        ASSERT_TRUE(provisionGroup().hasValue());
        ASSERT_TRUE(entries == 0 || publish(1));
        for (const std::string& name : before_)
            ASSERT_TRUE(save(name, 1000));
        fs::rename(home_, made);
    }
    fs::copy(made, home_, fs::copy_options::recursive);
}

const std::string& FaultyGroup::content(const std::string& fileName, std::size_t size) {
    std::string& bytes = contents_[fileName];
    if (bytes.size() != size) {
        bytes = patternedBytes(size);
        // A content of one byte differs from the others by that byte, which is enough.
        const std::string mark = size < 100 ? fileName.substr(0, 1) : fileName;
        bytes.replace(0, std::min(mark.size(), size), mark.substr(0, size));
    }
    return bytes;
}

bool FaultyGroup::save(const std::string& fileName, std::size_t size) {
    const fs::path source = top_ / "source" / (fileName + "." + std::to_string(size));
    if (const std::string& bytes = content(fileName, size); !fs::exists(source))
        write(source, bytes);
    return runSave([&](const auto& completion) {
        SharedItemManager::saveItem(item(fileName), URL::fileURL(source.string()), completion);
    });
}

bool FaultyGroup::saveData(const std::string& fileName, std::size_t size) {
    return runSave([&](const auto& completion) {
        SharedItemManager::saveItem(item(fileName), asData(content(fileName, size)), completion);
    });
}

bool FaultyGroup::import(bool links) const {
    forgetConnection();
    std::optional<NoLinks> noLinks;
    if (!links)
        noLinks.emplace();
    const Result<Import::Report> report = Import({.into = URL::fileURL((home_ / "into").string())}).run();
    return report && report.value().isComplete();
}

bool FaultyGroup::publish(int number) const {
    forgetConnection();
    const fs::path folder = top_ / "publish";
    const Publication publication{(folder / (std::to_string(number) + ".json")).string(),
                                  passcodeOf(number, '1'), passcodeOf(number, '2'), folder.string()};
    return sela::publish(publication).hasValue();
}

std::multiset<std::string> FaultyGroup::placed() const {
    std::multiset<std::string> names;
    if (!fs::exists(home_ / "into"))
        return names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home_ / "into")) {
        if (!entry.is_regular_file() || entry.path().filename().string().starts_with(".sela-import-"))
            continue;
        const auto found = std::ranges::find(contents_, contentOf(entry.path()),
                                             &std::map<std::string, std::string>::value_type::second);
        names.insert(found == contents_.end() ? "torn" : found->first);
    }
    return names;
}

std::string FaultyGroup::readLedger(std::multiset<std::string>& recorded) const {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return "the ledger cannot be read: " + entries.error()->localizedDescription();
    for (const auto& [key, entry] : entries.value()) {
        const fs::path file = items() / entry.fileName;
        if (!fs::exists(file) || contentOf(file) != contents_.at(entry.fileName))
            return "the entry of " + entry.fileName + " has not its whole file";
        recorded.insert(entry.fileName);
    }
    return {};
}

std::string FaultyGroup::wrongPublication(int published) const {
    const auto albums = SharedAlbumManager::getAlbums();
    if (!albums || albums->empty())
        return published > 0 ? "the catalogue is gone" : "";
    const std::string& number = albums->front().namePath.front();
    const auto passcodes =
        std::pair(SharedAlbumManager::sharedPassword(), SharedAlbumManager::sharedFakePassword());
    if (passcodes != std::pair(std::optional(passcodeOf(std::stoi(number), '1')),
                               std::optional(passcodeOf(std::stoi(number), '2'))))
        return "the catalogue " + number + " stands beside another's passcode";
    if (published > 0 && number != std::to_string(published))
        return "another catalogue than the published one";
    // A cover that cannot be read is left out, with a warning.
    const fs::path own = items().parent_path() / "AlbumThumbnails" / *albums->front().thumbNailName;
    return fs::exists(own) && contentOf(own) != cover(std::stoi(number)) ? "the cover is not whole" : "";
}

std::string FaultyGroup::wrong(const std::string& saved, int published) {
    forgetConnection();
    std::multiset<std::string> expected;
    if (std::string problem = readLedger(expected); !problem.empty())
        return problem;
    if (!saved.empty() && !expected.contains(saved))
        return saved + " was reported as saved and is not recorded";
    const std::multiset<std::string> placedBefore = placed();
    for (const std::string& name : before_) {
        if (expected.contains(name))
            continue;
        if (!placedBefore.contains(name))
            return name + " was recorded before and is gone";
        expected.insert(name);
    }
    if (std::string problem = wrongPublication(published); !problem.empty())
        return problem;

    const std::string next = "9.5next.jpg";
    if (!save(next, 1000))
        return "the next share does not work";
    expected.insert(next);
    std::multiset<std::string> left;
    if (!import() || !readLedger(left).empty() || !left.empty())
        return "the next import does not work, or leaves entries";
    if (placed() != expected)
        return "the imports placed " + std::to_string(placed().size()) + " files for " +
               std::to_string(expected.size()) + " items, or others than those";
    return publish(2) && wrongPublication(2).empty() ? "" : "the next publication does not work";
}

std::string FaultyGroup::wrongBehind(const Operation& operation, bool succeeded) {
    return wrong(succeeded ? operation.saves : "", succeeded ? operation.publishes : 0);
}

std::vector<Operation> operations(std::size_t size) {
    using enum FaultyGroup::Records;
    const std::string name = "3.5new.jpg";
    const auto saveFile = [=](FaultyGroup& group) { return group.save(name, size); };
    const auto saveData = [=](FaultyGroup& group) { return group.saveData(name, size); };
    const auto import = [](const FaultyGroup& group) { return group.import(); };
    const auto importByCopies = [](const FaultyGroup& group) { return group.import(false); };
    const auto publish = [](const FaultyGroup& group) { return group.publish(2); };
    // Of four long records the first one leaves blanks when it is removed.
    return {{"first save of a file", 0, usual, saveFile, name},
            {"first save of data", 0, usual, saveData, name},
            {"save of a file", 2, usual, saveFile, name},
            {"save of data", 2, usual, saveData, name},
            {"save of a file beside long records", 2, longOnes, saveFile, name},
            {"import", 2, usual, import},
            {"import to another disk", 2, usual, importByCopies},
            {"import from a long ledger", 4, longOnes, import},
            {"publication", 2, usual, publish, "", 2}};
}

} // namespace sela
