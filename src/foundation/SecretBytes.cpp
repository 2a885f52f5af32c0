#include "foundation/SecretBytes.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace sentrel {

void wipe(std::span<std::uint8_t> memory) noexcept
{
    if (memory.empty()) {
        return;
    }
    std::memset(memory.data(), 0, memory.size());
    // The compiler has to assume that this empty instruction reads the memory, so that the zeros are no dead store.
    asm volatile("" : : "r"(memory.data()) : "memory");
}

void wipe(std::string& text) noexcept
{
    // Wipes up to the capacity: a formerly longer text has left its end there.
    text.resize(text.capacity());
    wipe(std::span{reinterpret_cast<std::uint8_t*>(text.data()), text.size()});
    text.clear();
}

SecretBytes::SecretBytes(std::size_t size, std::pmr::memory_resource* memory) : memory_(memory)
{
    if (size > 0) {
        bytes_ = {static_cast<std::uint8_t*>(memory_->allocate(size)), size};
        std::ranges::fill(bytes_, std::uint8_t{0});
    }
}

SecretBytes::SecretBytes(BytesView bytes, std::pmr::memory_resource* memory) : SecretBytes(bytes.size(), memory)
{
    std::ranges::copy(bytes, bytes_.begin());
}

SecretBytes::SecretBytes(SecretBytes&& other) noexcept : memory_(other.memory_), bytes_(std::exchange(other.bytes_, {}))
{
}

SecretBytes& SecretBytes::operator=(SecretBytes other) noexcept
{
    std::swap(memory_, other.memory_);
    std::swap(bytes_, other.bytes_);
    return *this;
}

SecretBytes::~SecretBytes()
{
    if (!bytes_.empty()) {
        wipe(bytes_);
        memory_->deallocate(bytes_.data(), bytes_.size());
    }
}

bool equalInConstantTime(BytesView left, BytesView right) noexcept
{
    if (left.size() != right.size()) {
        return false;
    }
    std::uint8_t differences = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        differences = static_cast<std::uint8_t>(differences | (left[i] ^ right[i]));
    }
    return differences == 0;
}

} // namespace sentrel
