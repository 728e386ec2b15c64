#include "Base/LargePages.h"

#include <sys/mman.h>

namespace Base::Detail {

namespace {

constexpr std::size_t pageSize = 2 << 20; // Of x86-64 and most of ARM.
constexpr std::size_t smallest = 2 * pageSize; // Below that the allocator at hand is as good.

std::size_t whole(std::size_t size) { return (size + pageSize - 1) / pageSize * pageSize; }

} // namespace

void* largeAllocation(std::size_t size)
{
    if (size < smallest)
        return ::operator new(size);
    auto* const memory = ::operator new (whole(size), std::align_val_t { pageSize });
#ifdef MADV_HUGEPAGE
    ::madvise(memory, whole(size), MADV_HUGEPAGE); // A wish; what the system can't is no harm.
#endif
    return memory;
}

void releaseLargeAllocation(void* memory, std::size_t size) noexcept
{
    if (size < smallest)
        ::operator delete(memory);
    else
        ::operator delete (memory, std::align_val_t { pageSize });
}

} // namespace Base::Detail
