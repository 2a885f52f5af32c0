#include "support/AllocationCounter.hpp"

#include <cstdlib>
#include <new>

#if defined(__SANITIZE_THREAD__)
#define SENTREL_OWN_OPERATORS 0
#elif defined(__has_feature)
#define SENTREL_OWN_OPERATORS (!__has_feature(thread_sanitizer) && !__has_feature(address_sanitizer))
#else
#define SENTREL_OWN_OPERATORS 1
#endif

namespace {

thread_local std::size_t allocations = 0;

} // namespace

#if SENTREL_OWN_OPERATORS
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

#endif

namespace sentrel::test {

bool AllocationCounter::isAvailable()
{
    return SENTREL_OWN_OPERATORS != 0;
}

std::size_t AllocationCounter::total()
{
    return allocations;
}

} // namespace sentrel::test
