#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>

namespace sentrel {

/// Overwrites memory with zeros. The optimiser must keep this, even if nothing reads the memory afterwards.
void wipe(std::span<std::uint8_t> memory) noexcept;

/// Wipes the text's whole buffer and leaves the text empty.
void wipe(std::string& text) noexcept;

/// Bytes that must not stay in memory after use: a passcode, a derived key. Destruction and assignment wipe them; a
/// moved-from object is empty. The length is fixed, so that growth leaves no old buffer behind.
class SecretBytes {
public:
    /// `size` zeros, to be filled in through `writable`.
    explicit SecretBytes(std::size_t size = 0, std::pmr::memory_resource* memory = std::pmr::new_delete_resource());

    /// A copy of the bytes; their owner still has to wipe them.
    explicit SecretBytes(BytesView bytes, std::pmr::memory_resource* memory = std::pmr::new_delete_resource());

    /// A copy of the text's bytes; the text's owner still has to wipe it.
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

/// Whether two byte strings are equal. The time depends on their lengths only, so that it doesn't reveal how many bytes
/// of a guess were right.
[[nodiscard]] bool equalInConstantTime(BytesView left, BytesView right) noexcept;

} // namespace sentrel
