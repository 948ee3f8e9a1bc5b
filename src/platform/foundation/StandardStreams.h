#pragma once

namespace sela {

/// Opens those of standard input, output and error that the program was started without, as with `>&-`: the
/// next file that it opened would get their numbers, and what is printed would be written into it. Reading
/// from and writing to what is opened here fails. Called in a program before it opens anything; main thread.
void openStandardStreams();

} // namespace sela
