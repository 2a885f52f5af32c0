#include "support/AllocationCounter.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

} // namespace

// The test program's own operators, on malloc, so that the sanitizers still see every block.
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc{};
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

namespace sentrel::test {

std::size_t AllocationCounter::total()
{
    return allocations;
}

} // namespace sentrel::test
