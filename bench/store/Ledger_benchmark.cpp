// Recording one item in a ledger that has N, beside SQLite inserting one row into a table of N with the same
// durability: flushed at the end of each.

#include "BenchHome.h"
#include "platform/foundation/Data.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/NSLog.h"
#include "store/LedgerUpdate.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <sqlite3.h>

namespace sela {
namespace {

std::string home;

SharedItem numbered(std::int64_t number) {
    return {"2026-11-25-10-00-00-" + std::to_string(number) + ".jpg",
            {"Trips", "Rome"},
            false,
            "IMG_" + std::to_string(number) + ".JPG"};
}

Data ledgerOf(std::int64_t count) {
    std::vector<SharedItemLedger::Entry> entries;
    for (std::int64_t i = 0; i < count; ++i)
        entries.emplace_back(SharedItemLedger::key(numbered(i)), numbered(i));
    return *SharedItemLedger::encode(entries);
}

void recordItem(benchmark::State& state) {
    if (sharedDefaults()->setData(sharedItemsKey, ledgerOf(state.range(0))))
        fatalError("the ledger cannot be stored");
    std::int64_t number = state.range(0);
    const auto record = [&] {
        updateLedger(numbered(number++), [](const ErrorRef& error) {
            if (error)
                fatalError("the item cannot be recorded");
        });
    };
    record();
    for (auto _ : state)
        record();
}

void forEachLength(benchmark::internal::Benchmark* made) {
    made->Arg(10)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}

/// With enough items that a long ledger grows once among them.
void forEachRecording(benchmark::internal::Benchmark* made) {
    made->Apply(forEachLength)->Iterations(400)->UseRealTime();
}

BENCHMARK(recordItem)->Apply(forEachRecording);

/// The parts of recording that are not storing.
void readKeys(benchmark::State& state) {
    const Data ledger = ledgerOf(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(SharedItemLedger::keys(ledger).value());
}
BENCHMARK(readKeys)->Apply(forEachLength);

void spliceItem(benchmark::State& state) {
    const Data ledger = ledgerOf(state.range(0));
    const SharedItem item = numbered(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(SharedItemLedger::adding(ledger, SharedItemLedger::key(item), item));
}
BENCHMARK(spliceItem)->Apply(forEachLength);

class Table {
public:
    explicit Table(std::int64_t count) {
        sqlite3_open((home + "/peer.sqlite3").c_str(), &connection_);
        run("PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL; DROP TABLE IF EXISTS items;"
            "CREATE TABLE items(key TEXT PRIMARY KEY, fileName TEXT, albumNames TEXT, fake INT, "
            "preferredName TEXT)");
        run("BEGIN");
        for (std::int64_t i = 0; i < count; ++i)
            insert(i);
        run("COMMIT");
    }
    ~Table() { sqlite3_close(connection_); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    void insert(std::int64_t number) {
        const SharedItem item = numbered(number);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(connection_, "INSERT INTO items VALUES(?,?,?,?,?)", -1, &statement, nullptr);
        const std::string texts[] = {SharedItemLedger::key(item), item.fileName, "Trips/Rome", "0",
                                     *item.preferredName};
        for (int i = 0; i < 5; ++i)
            sqlite3_bind_text(statement, i + 1, texts[i].c_str(), -1, SQLITE_TRANSIENT);
        if (sqlite3_step(statement) != SQLITE_DONE)
            fatalError("the peer cannot insert");
        sqlite3_finalize(statement);
    }

    void run(const char* sql) {
        if (sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            fatalError("the peer cannot run its statement");
    }

private:
    sqlite3* connection_ = nullptr;
};

void insertRow(benchmark::State& state) {
    Table table(state.range(0));
    std::int64_t number = state.range(0);
    for (auto _ : state)
        table.insert(number++);
}
BENCHMARK(insertRow)->Apply(forEachRecording);

} // namespace
} // namespace sela

int main(int argc, char** argv) {
    sela::keepFreedMemory();
    const sela::BenchHome home;
    sela::home = home.path();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
