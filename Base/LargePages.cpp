#include "Base/LargePages.h"

#include <sys/mman.h>

namespace Base {

namespace {

constexpr std::size_t pageSize = 2 << 20; // Of x86-64 and most of ARM.
constexpr std::size_t smallest = 2 * pageSize; // Below that the allocator at hand is as good.

std::size_t whole(std::size_t size) { return (size + pageSize - 1) / pageSize * pageSize; }

void wishForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#ifdef MADV_HUGEPAGE
    ::madvise(memory, size, MADV_HUGEPAGE); // What the system can't is no harm.
#endif
}

} // namespace

namespace Detail {

void* largeAllocation(std::size_t size)
{
    if (size < smallest)
        return ::operator new(size);
    auto* const memory = ::operator new (whole(size), std::align_val_t { pageSize });
    wishForLargePages(memory, whole(size));
    return memory;
}

void releaseLargeAllocation(void* memory, std::size_t size) noexcept
{
    if (size < smallest)
        ::operator delete(memory);
    else
        ::operator delete (memory, std::align_val_t { pageSize });
}

} // namespace Detail

} // namespace Base
