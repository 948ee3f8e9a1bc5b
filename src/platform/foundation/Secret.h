#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace sela {

/// Allocates memory for secrets: locked into RAM as far as the limit allows, excluded from core dumps, and
/// overwritten when it is freed. Any thread.
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

/// Overwrites bytes that held a secret, even if they are never read again.
void overwrite(std::span<std::byte> bytes);

/// A secret text: a passcode, what has been entered of one, an album's password. It can get into a log, an
/// error, a tree or an accessibility value only by `exposed()`. A value; one thread at a time.
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

    /// The text, for a comparison or for storing it; it must not be copied elsewhere. Valid until the next
    /// change.
    std::string_view exposed() const { return {characters_.data(), characters_.size()}; }

    bool operator==(const Secret&) const = default;
    bool operator==(std::string_view text) const { return exposed() == text; }

private:
    std::vector<char, SecretAllocator> characters_;
};

} // namespace sela
