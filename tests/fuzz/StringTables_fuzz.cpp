#include "fuzz/FuzzTarget.h"
#include "platform/foundation/StringTable.h"

// Reads the input as a compiled table.
void fuzz(sela::DataView input) {
    if (const auto table = sela::StringTable::parse(input, "table"); !table)
        require(table.error()->localizedDescription().starts_with("table is "));
}
