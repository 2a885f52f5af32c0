#include "foundation/SecretBytes.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace sentrel {
namespace {

using testing::Each;
using testing::ElementsAre;

/// Memory that can still be looked at when it has been given back.
class Arena final : public std::pmr::memory_resource {
public:
    [[nodiscard]] std::span<const std::uint8_t> used() const { return std::span{memory_}.first(used_); }
    [[nodiscard]] int allocations() const { return allocations_; }

private:
    void* do_allocate(std::size_t size, std::size_t alignment) override
    {
        const std::size_t begin = (used_ + alignment - 1) / alignment * alignment;
        used_ = begin + size;
        ++allocations_;
        return memory_.data() + begin;
    }
    void do_deallocate(void* /*place*/, std::size_t /*size*/, std::size_t /*alignment*/) override {}
    [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }

    alignas(std::max_align_t) std::array<std::uint8_t, 256> memory_{};
    std::size_t used_ = 0;
    int allocations_ = 0;
};

TEST(SecretBytes, LeaveOnlyZerosBehindWhenTheyDieMoveOrAreReplaced)
{
    Arena arena;
    const Bytes passcode{1, 2, 3, 4};
    {
        SecretBytes first{BytesView{passcode}, &arena};
        SecretBytes second{std::move(first)};
        EXPECT_THAT(second.view(), ElementsAre(1, 2, 3, 4));
        SecretBytes third{BytesView{passcode}, &arena};
        third = std::move(second);
        EXPECT_THAT(third.view(), ElementsAre(1, 2, 3, 4));
        EXPECT_THAT(arena.used().last(4), Each(0)); // what the third held before
        EXPECT_THAT(arena.used().first(4), ElementsAre(1, 2, 3, 4));
    }
    EXPECT_EQ(arena.allocations(), 2);
    EXPECT_THAT(arena.used(), Each(0));
}

TEST(SecretBytes, ATextIsWipedUpToTheEndOfItsBuffer)
{
    std::string text = "a long passcode that lies on the heap";
    char* const buffer = text.data();
    const std::size_t length = text.size();
    text.resize(3); // the rest of it is still in the buffer
    wipe(text);
    EXPECT_TRUE(text.empty());
    ASSERT_EQ(text.data(), buffer);
    EXPECT_THAT((std::span{buffer, length}), Each('\0'));
}

TEST(SecretBytes, AreComparedWholeAndNeverEqualToOtherLengths)
{
    const Bytes key(32, 7);
    EXPECT_TRUE(equalInConstantTime(key, Bytes(32, 7)));
    EXPECT_TRUE(equalInConstantTime({}, {}));
    EXPECT_FALSE(equalInConstantTime(key, Bytes(31, 7)));
    EXPECT_FALSE(equalInConstantTime(key, {}));
    for (std::size_t i = 0; i < key.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            Bytes other = key;
            other[i] = static_cast<std::uint8_t>(other[i] ^ 1U << bit);
            EXPECT_FALSE(equalInConstantTime(key, other)) << i << ":" << bit;
        }
    }
}

} // namespace
} // namespace sentrel
