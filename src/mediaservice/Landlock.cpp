#include "mediaservice/Landlock.h"

#include "platform/foundation/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sela::Sandbox {

namespace {

/// The kernel's struct landlock_ruleset_attr; the C library's headers know the first member only. For a
/// kernel that knows fewer members, fewer bytes are passed.
struct RulesetAttributes {
    std::uint64_t fileAccess;
    std::uint64_t networkAccess; ///< from version 4 on
    std::uint64_t scopes;        ///< from version 6 on
};

constexpr std::uint32_t askForVersion = 1;

constexpr std::uint64_t lowestBits(int count) {
    return (std::uint64_t{1} << count) - 1;
}

/// Every access right that an ABI version of Landlock knows. (Its documentation lists them by version.)
RulesetAttributes everythingOf(long version) {
    int fileRights = 13;
    if (version >= 2)
        ++fileRights; // to move a file to another folder
    if (version >= 3)
        ++fileRights; // to truncate
    if (version >= 5)
        ++fileRights; // to control a device
    return {lowestBits(fileRights), lowestBits(version >= 4 ? 2 : 0), lowestBits(version >= 6 ? 2 : 0)};
}

std::size_t sizeOfAttributes(long version) {
    if (version >= 6)
        return sizeof(RulesetAttributes);
    return version >= 4 ? offsetof(RulesetAttributes, scopes) : offsetof(RulesetAttributes, networkAccess);
}

} // namespace

bool denyFiles() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, askForVersion);
    if (version < 1)
        return false;
    const RulesetAttributes everything = everythingOf(version);
    // Without any rule that would allow something.
    const FileDescriptor ruleset(
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &everything, sizeOfAttributes(version), 0)));
    return ruleset.isOpen() && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0;
}

} // namespace sela::Sandbox
