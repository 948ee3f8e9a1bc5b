// The minimum needed to copy files one after another so that each is recorded only once it was flushed:
// recorded-copies FILE... FOLDER. Per file a copy, an fsync of the file and of its folder, and an SQLite row
// with the durability of the settings. The peer of saving many files.

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <sqlite3.h>

namespace {

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::perror(what);
    std::exit(1);
}

void run(sqlite3* connection, const std::string& sql) {
    require(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
}

void copy(const std::string& source, const std::string& target) {
    static std::vector<char> buffer(2'097'152);
    const int in = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    require(in >= 0 && out >= 0, "open");
    struct stat status = {};
    require(::fstat(in, &status) == 0, "fstat");
    require(::fallocate(out, 0, 0, status.st_size) == 0, "fallocate");
    ssize_t count = 0;
    while ((count = ::read(in, buffer.data(), buffer.size())) > 0)
        require(::write(out, buffer.data(), static_cast<std::size_t>(count)) == count, "write");
    require(count == 0, "read");
    require(::fsync(out) == 0, "fsync");
    ::close(in);
    ::close(out);
}

} // namespace

int main(int argc, char** argv) {
    require(argc > 2, "recorded-copies FILE... FOLDER");
    const std::string folder = argv[argc - 1];
    const int folderDescriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(folderDescriptor >= 0, "open folder");
    sqlite3* connection = nullptr;
    require(sqlite3_open((folder + ".sqlite3").c_str(), &connection) == SQLITE_OK, "sqlite3_open");
    run(connection, "PRAGMA page_size=65536; PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL;"
                    "CREATE TABLE IF NOT EXISTS items(name TEXT PRIMARY KEY); DELETE FROM items");
    for (int i = 1; i < argc - 1; ++i) {
        const std::string source = argv[i];
        const std::string name = source.substr(source.rfind('/') + 1);
        copy(source, folder + "/" + name);
        require(::fsync(folderDescriptor) == 0, "fsync folder");
        run(connection, "INSERT INTO items VALUES('" + name + "')");
    }
    sqlite3_close(connection);
    return 0;
}
