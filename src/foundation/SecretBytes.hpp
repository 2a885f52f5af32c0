#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>

namespace sentrel {

/// Overwrites memory with zeros in a way that the optimiser must keep, also when nothing reads the memory afterwards.
void wipe(std::span<std::uint8_t> memory) noexcept;

/// Wipes everything that the text's buffer holds, and leaves the text empty.
void wipe(std::string& text) noexcept;

/// Bytes that nobody may find in memory later: a passcode, a derived key. They are wiped when this dies or receives
/// other bytes; a move leaves nothing behind. The length never changes, so that no outgrown buffer stays about.
class SecretBytes {
public:
    /// This many zeros, to be filled in through `writable`.
    explicit SecretBytes(std::size_t size = 0, std::pmr::memory_resource* memory = std::pmr::new_delete_resource());

    /// A copy of the bytes; whoever owns these still has to wipe them.
    explicit SecretBytes(BytesView bytes, std::pmr::memory_resource* memory = std::pmr::new_delete_resource());

    /// A copy of the text's bytes; whoever owns the text still has to wipe it.
    explicit SecretBytes(std::string_view text) : SecretBytes(BytesView{bytesOfText(text)}) {}

    SecretBytes(SecretBytes&& other) noexcept;
    SecretBytes& operator=(SecretBytes other) noexcept;
    SecretBytes(const SecretBytes&) = delete;
    ~SecretBytes();

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] bool empty() const { return bytes_.empty(); }
    [[nodiscard]] BytesView view() const { return bytes_; }
    [[nodiscard]] std::span<std::uint8_t> writable() { return bytes_; }

private:
    static BytesView bytesOfText(std::string_view text)
    {
        return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
    }

    std::pmr::memory_resource* memory_;
    std::span<std::uint8_t> bytes_;
};

/// Whether two byte strings are equal. The time depends on their lengths only, so that it tells nobody how many bytes
/// of a guess were right; byte strings of different length are never equal.
[[nodiscard]] bool equalInConstantTime(BytesView left, BytesView right) noexcept;

} // namespace sentrel
