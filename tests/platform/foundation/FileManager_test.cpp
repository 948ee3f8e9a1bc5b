#include "platform/foundation/FileManager.h"

#include "support/TemporaryHome.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace sela {
namespace {

namespace fs = std::filesystem;

int posixCode(const ErrorRef& error) {
    const auto* const posix = dynamic_cast<const NSError*>(error.get());
    return posix ? posix->code() : 0;
}

class FileManagerTest : public testing::Test {
protected:
    TemporaryHome home;
    FileManager& files = FileManager::defaultManager();

    URL at(const std::string& name) const { return URL::fileURL((home.path() / name).string()); }
};

TEST_F(FileManagerTest, AGroupHasAContainerOnceItsFolderExists) {
    const char* const group = "group.sela.vault";
    EXPECT_FALSE(files.containerURL(group));
    EXPECT_EQ(files.provisioningURL(group).value().path(), home.container().string());
    EXPECT_TRUE(fs::is_empty(home.path())) << "looking made something";
    home.write("data/sela/groups/group.sela.vault", "");
    EXPECT_FALSE(files.containerURL(group)) << "a file is no container";
    fs::remove(home.container());
    home.provision();
    EXPECT_EQ(files.containerURL(group).value().path(), home.container().string());
    for (const char* const elsewhere : {"", ".", "..", "../groups/group.sela.vault", "a/b"})
        EXPECT_FALSE(files.containerURL(elsewhere)) << elsewhere;
}

TEST_F(FileManagerTest, FoldersAreMadeWithThoseAboveThem) {
    EXPECT_FALSE(files.createDirectory(at("a/b/c").path()));
    EXPECT_TRUE(fs::is_directory(home.path() / "a/b/c"));
    EXPECT_FALSE(files.createDirectory(at("a/b").path()));
    home.write("file", "");
    EXPECT_EQ(posixCode(files.createDirectory(at("file").path())), ENOTDIR);
    EXPECT_EQ(posixCode(files.createDirectory(at("file/below").path())), ENOTDIR);
}

TEST_F(FileManagerTest, OnlyRegularFilesAreReadWithoutEverBlocking) {
    ::mkfifo(at("fifo").path().c_str(), 0600);
    fs::create_directory(at("folder").path());
    fs::create_symlink(at("nowhere").path(), at("dangling").path());
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    at("socket").path().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    for (const char* const name : {"fifo", "folder", "dangling", "socket", "missing"})
        EXPECT_TRUE(files.inputStream(at(name)).error()) << name;
    EXPECT_TRUE(files.inputStream(URL::fileURL("/dev/zero")).error());
    ::close(listener);
    home.write("real", "content");
    fs::create_symlink(at("real").path(), at("link").path());
    EXPECT_TRUE(files.inputStream(at("link")));
}

TEST_F(FileManagerTest, AnOutputStreamWritesExactlyWhatItWasGiven) {
    for (const std::int64_t reserved : {0, 3, 100'000}) {
        home.write("out", "what was there before");
        Result<OutputStream> stream = files.outputStream(at("out"), reserved);
        EXPECT_EQ(stream.value().write(asData("hello")), 5);
        EXPECT_EQ(stream.value().write(asData(" world")), 6);
        EXPECT_FALSE(stream.value().synchronize());
        EXPECT_EQ(contentOf(home.path() / "out"), "hello world") << reserved;
    }
}

TEST_F(FileManagerTest, AnOutputStreamFollowsNoLinkAndTakesOverNoFileWhereNoneMayBe) {
    home.write("victim", "content");
    fs::create_symlink(at("victim").path(), at("link").path());
    fs::create_symlink(at("nowhere").path(), at("dangling").path());
    for (const char* const name : {"link", "dangling", "missing folder/file"})
        EXPECT_TRUE(files.outputStream(at(name), 0).error()) << name;
    EXPECT_EQ(posixCode(files.outputStream(at("victim"), 0, WhenThere::fail).error()), EEXIST);
    EXPECT_EQ(contentOf(home.path() / "victim"), "content");
    EXPECT_FALSE(fs::exists(home.path() / "nowhere"));
}

TEST_F(FileManagerTest, AReservationThatFailsLeavesNothingBehind) {
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {4096, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const ErrorRef error = files.outputStream(at("big"), 1'000'000).error();
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(posixCode(error), EFBIG);
    EXPECT_FALSE(fs::exists(home.path() / "big"));
}

TEST_F(FileManagerTest, AnAtomicWriteIsWholeOrNotThere) {
    home.write("file", "old");
    EXPECT_FALSE(files.writeAtomically(asData("new content"), at("file")));
    EXPECT_EQ(contentOf(home.path() / "file"), "new content");
    fs::create_directories(home.path() / "occupied/by a folder");
    EXPECT_TRUE(files.writeAtomically(asData("x"), at("file"),
                                      [](std::size_t) { return NSError::posix(ECANCELED, ""); }));
    EXPECT_EQ(contentOf(home.path() / "file"), "new content");
    EXPECT_TRUE(files.writeAtomically(asData("x"), at("occupied")));
    EXPECT_TRUE(files.writeAtomically(asData("x"), at("missing/file")));
    EXPECT_EQ(files.contentsOfDirectory(home.path().string()).value(),
              (std::vector<std::string>{"file", "occupied"}))
        << "a temporary file was left";
}

TEST_F(FileManagerTest, LinksAndMovesNeverReplace) {
    home.write("one", "1");
    home.write("two", "2");
    EXPECT_EQ(posixCode(files.linkItem(at("one").path(), at("two").path())), EEXIST);
    EXPECT_EQ(posixCode(files.moveItem(at("one").path(), at("two").path())), EEXIST);
    EXPECT_EQ(contentOf(home.path() / "two"), "2");
}

TEST_F(FileManagerTest, ContentsAreReadUpToALimit) {
    home.write("file", std::string(70'000, 'x'));
    EXPECT_EQ(files.contentsOfFile(at("file").path(), 70'000).value().size(), 70'000u);
    EXPECT_EQ(posixCode(files.contentsOfFile(at("file").path(), 69'999).error()), EFBIG);
}

} // namespace
} // namespace sela
