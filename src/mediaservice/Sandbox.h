#pragma once

#include <cstdint>

namespace sela {

/// Confines the calling process to the descriptors it holds. Called once, after libraries and codecs are
/// loaded and before the first byte of a file is read; existing threads are confined too.
namespace Sandbox {

struct Limits {
    std::uint64_t addressSpace; ///< bytes
    std::uint64_t cpuSeconds;   ///< of the whole process
};

/// From here on the process can read files at any offset and map them from descriptors that it holds or is
/// sent, talk on `mediaHelperSocket`, write to standard error, use memory and start threads. Everything else
/// fails with EPERM: opening, creating or looking at files, reading and writing other descriptors, sockets,
/// running programs, new processes, touching other processes, executable memory. No file can grow; the
/// process dumps no core and cannot be traced. False when any of this fails; nothing must be decoded then.
///
/// A second layer, where the kernel supports it, is an empty network namespace and a Landlock domain without
/// any right.
///
/// Builds with sanitizers reserve terabytes of address space, so they do not limit it.
bool enter(const Limits& limits);

} // namespace Sandbox

} // namespace sela
