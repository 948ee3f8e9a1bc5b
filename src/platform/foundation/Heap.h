#pragma once

namespace sela {

/// Lets the process keep up to 64 MiB that it freed, for what it asks for next, where the C library would
/// give it back and get it again page by page: the ledger, pictures and layers are large and come again and
/// again. Called first in a program, before it has threads.
void keepFreedMemory();

} // namespace sela
