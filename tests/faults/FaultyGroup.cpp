#include "faults/FaultyGroup.h"

#include "faults/TracedProcess.h"
#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "store/SharedAlbumManager.h"
#include "store/SharedFolder.h"
#include "store/SharedItemManager.h"
#include "support/FileManagerWrapper.h"
#include "support/TemporaryHome.h"
#include "vault/Import.h"
#include "vault/Publishing.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace sela {

namespace {

namespace fs = std::filesystem;

/// How the names of files end that have a long record.
constexpr const char* longEnding = ".5long.jpg";

/// A file system that cannot give a file a second name, as between two disks.
class NoLinks : public FileManagerWrapper {
public:
    ErrorRef linkItem(const std::string&, const std::string&) override {
        return NSError::posix(EXDEV, "link");
    }
};

void write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string catalogue(int number) {
    return "[{\"namePath\":[\"" + std::to_string(number) + "\"],\"fake\":false,\"thumbNailName\":\"cover" +
           std::to_string(number) + ".jpg\"}]";
}

/// The passcode beside the catalogue of that number: the vault's, or the decoy's with another first digit.
std::string passcodeOf(int number, char first) {
    return first + std::to_string(100 + number);
}

std::string cover(int number) {
    return "cover " + std::to_string(number);
}

bool runSave(const std::function<void(const SharedItemManager::Completion&)>& save) {
    HeadlessMainLoop loop;
    const ScopedMainQueue scope(loop);
    bool done = false;
    save([&](const ErrorRef& error) { done = !error; });
    loop.run();
    return done;
}

} // namespace

FaultyGroup::FaultyGroup() {
    // In memory where possible: what a disk would keep is the tests' own business, and thousands of runs
    // flush.
    const fs::path memory = "/dev/shm";
    const bool usable = ::access(memory.c_str(), W_OK) == 0;
    std::string pattern = ((usable ? memory : fs::temp_directory_path()) / "sela-faults-XXXXXX").string();
    top_ = ::mkdtemp(pattern.data());
    home_ = top_ / "home";
    ::setenv("XDG_DATA_HOME", (home_ / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home_ / "config").c_str(), 1);
}

FaultyGroup::~FaultyGroup() {
    std::error_code ignored;
    fs::remove_all(top_, ignored);
}

fs::path FaultyGroup::settingsFile() const {
    return home_ / "config/sela/group.sela.vault.sqlite3";
}

void FaultyGroup::reset(int entries, Records records) {
    fs::remove_all(home_);
    before_.clear();
    for (int i = 0; i < entries; ++i) {
        before_.push_back(std::to_string(i) + (records == Records::longOnes ? longEnding : ".5before.jpg"));
        content(before_.back(), 1000);
    }
    // Made once and copied from then on.
    const fs::path made = top_ / ((records == Records::longOnes ? "long" : "made") + std::to_string(entries));
    if (!fs::exists(made)) {
        for (int number : {1, 2}) {
            write(top_ / "publish" / (std::to_string(number) + ".json"), catalogue(number));
            write(top_ / "publish" / ("cover" + std::to_string(number) + ".jpg"), cover(number));
        }
        const std::string problem = runApart([&]() -> std::string {
            if (provisionGroup() || (entries > 0 && !publish(1)))
                return "cannot be provisioned";
            for (const std::string& name : before_)
                if (!save(name, source(name, 1000)))
                    return "cannot be filled";
            return {};
        });
        ASSERT_EQ(problem, "");
        fs::rename(home_, made);
    }
    fs::copy(made, home_, fs::copy_options::recursive);
}

const std::string& FaultyGroup::content(const std::string& fileName, std::size_t size) {
    std::string& bytes = contents_[fileName];
    if (bytes.size() != size) {
        bytes = patternedBytes(size);
        // A size of one has one byte to tell it from the others, and one is enough.
        const std::string mark = size < 100 ? fileName.substr(0, 1) : fileName;
        bytes.replace(0, std::min(mark.size(), size), mark.substr(0, size));
    }
    return bytes;
}

URL FaultyGroup::source(const std::string& fileName, std::size_t size) {
    const fs::path path = top_ / "source" / (fileName + "." + std::to_string(size));
    const std::string& bytes = content(fileName, size);
    if (!fs::exists(path))
        write(path, bytes);
    return URL::fileURL(path.string());
}

SharedItem FaultyGroup::item(const std::string& fileName) {
    const std::size_t length = fileName.ends_with(longEnding) ? 40'000 : 5;
    return {fileName, {"Trips", "Rome"}, false, std::string(length, 'n') + ".jpg"};
}

bool FaultyGroup::save(const std::string& fileName, const URL& source) {
    return runSave(
        [&](const auto& completion) { SharedItemManager::saveItem(item(fileName), source, completion); });
}

bool FaultyGroup::saveData(const std::string& fileName, const std::string& bytes) {
    return runSave([&](const auto& completion) {
        SharedItemManager::saveItem(item(fileName), asData(bytes), completion);
    });
}

bool FaultyGroup::import(bool links) const {
    const URL folder = URL::fileURL(into().string());
    std::optional<NoLinks> files;
    if (!links)
        files.emplace();
    const Result<Import::Report> report = Import({folder, false, false}).run();
    return report && report.value().problems.empty();
}

bool FaultyGroup::publish(int number) const {
    const fs::path folder = top_ / "publish";
    const Publication publication{(folder / (std::to_string(number) + ".json")).string(),
                                  passcodeOf(number, '1'), passcodeOf(number, '2'), folder.string()};
    return sela::publish(publication).hasValue();
}

std::vector<std::string> FaultyGroup::placed() const {
    std::vector<std::string> names;
    if (!fs::exists(into()))
        return names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(into())) {
        if (!entry.is_regular_file() || entry.path().filename().string().starts_with(".sela-import-"))
            continue;
        const std::string bytes = contentOf(entry.path());
        const auto found =
            std::ranges::find_if(contents_, [&](const auto& known) { return known.second == bytes; });
        names.push_back(found == contents_.end() ? "torn" : found->first);
    }
    return names;
}

std::string FaultyGroup::wrong(const std::string& saved, int published) {
    return runApart([&] {
        const std::string now = wrongNow(saved, published);
        return now.empty() ? wrongAfterNextRun() : now;
    });
}

std::string FaultyGroup::wrongNow(const std::string& saved, int published) {
    const std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return "the settings do not open";
    const Result<std::optional<Data>> text = defaults->readData(sharedItemsKey);
    if (!text)
        return "the ledger cannot be read: " + text.error()->localizedDescription();
    std::set<std::string> kept;
    if (text.value()) {
        const auto entries = SharedItemLedger::decode(*text.value());
        if (!entries)
            return "the ledger cannot be decoded";
        for (const auto& [key, entry] : entries.value()) {
            const fs::path file =
                sharedFolderUrl()->appendingPathComponent("Items").path() + "/" + entry.fileName;
            if (!fs::exists(file) || contentOf(file) != contents_.at(entry.fileName))
                return "the entry of " + entry.fileName + " has not its whole file";
            kept.insert(entry.fileName);
        }
    }
    if (!saved.empty() && !kept.contains(saved))
        return saved + " was reported as saved and is not recorded";
    for (const std::string& name : placed())
        kept.insert(name);
    for (const std::string& name : before_)
        if (!kept.contains(name))
            return name + " was recorded before and is gone";
    return wrongPublication(published);
}

std::string FaultyGroup::wrongPublication(int published) const {
    const auto albums = SharedAlbumManager::getAlbums();
    const auto passcode = SharedAlbumManager::sharedPassword();
    if (!albums || albums->empty())
        return published > 0 ? "the catalogue is gone" : "";
    const std::string& number = albums->front().namePath.front();
    if (passcode != passcodeOf(std::stoi(number), '1') ||
        SharedAlbumManager::sharedFakePassword() != passcodeOf(std::stoi(number), '2'))
        return "the catalogue " + number + " stands beside another's passcode";
    if (published > 0 && number != std::to_string(published))
        return "another catalogue than the published one";
    // A cover that cannot be read is left out, with a warning.
    const fs::path covers = sharedFolderUrl()->appendingPathComponent("AlbumThumbnails").path();
    const fs::path own = covers / *albums->front().thumbNailName;
    if (fs::exists(own) && contentOf(own) != cover(std::stoi(number)))
        return "the catalogue's cover is not whole";
    return {};
}

std::string FaultyGroup::wrongAfterNextRun() {
    std::multiset<std::string> expected;
    const std::optional<Data> ledger = sharedDefaults()->data(sharedItemsKey);
    if (ledger) {
        const auto entries = SharedItemLedger::decode(*ledger);
        for (const auto& [key, entry] : entries.value())
            expected.insert(entry.fileName);
    }
    for (const std::string& name : before_)
        if (!expected.contains(name))
            expected.insert(name);
    const std::string next = "9.5next.jpg";
    if (!save(next, source(next, 1000)))
        return "the next share does not work";
    expected.insert(next);
    if (!import())
        return "the next import does not work";
    if (sharedDefaults()->data(sharedItemsKey))
        return "the next import left entries";
    const std::vector<std::string> all = placed();
    for (const std::string& name : all)
        if (name != "torn" && !expected.contains(name))
            return name + " was imported though nobody recorded it";
    if (std::multiset<std::string>(all.begin(), all.end()) != expected)
        return "the next import placed " + std::to_string(all.size()) + " files for " +
               std::to_string(expected.size()) + " items";
    if (!publish(2) || !wrongPublication(2).empty())
        return "the next publish does not work";
    return {};
}

} // namespace sela
