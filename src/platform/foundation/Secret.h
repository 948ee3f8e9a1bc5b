#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace sela {

/// Gives memory for secrets: locked into RAM as far as the limit allows, left out of cores, and overwritten
/// when it is given back. Any thread.
struct SecretAllocator {
    using value_type = char;
    template<class>
    struct rebind {
        using other = SecretAllocator;
    };

    char* allocate(std::size_t size);
    void deallocate(char* memory, std::size_t size);

    bool operator==(const SecretAllocator&) const = default;
};

/// Overwrites bytes that held a secret, also where nobody reads them any more.
void overwrite(std::span<std::byte> bytes);

/// A text that is nobody's business: a passcode, what has been entered of one, an album's password. It has no
/// way into a log, an error, a tree or an accessibility value but by `exposed()`. A value; one thread at a
/// time.
class Secret {
public:
    Secret() = default;
    explicit Secret(std::string_view text) : characters_(text.begin(), text.end()) {}

    bool empty() const { return characters_.empty(); }

    /// Bytes, which are digits in what is entered.
    std::size_t size() const { return characters_.size(); }

    void append(char character) { characters_.push_back(character); }
    void removeFirst() { characters_.erase(characters_.begin()); }
    void clear() { *this = Secret(); }

    /// The text, for a comparison or for storing it; not to be copied anywhere else. Valid until the next
    /// change.
    std::string_view exposed() const { return {characters_.data(), characters_.size()}; }

    bool operator==(const Secret&) const = default;
    bool operator==(std::string_view text) const { return exposed() == text; }

private:
    std::vector<char, SecretAllocator> characters_;
};

} // namespace sela
