#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace Base {

// Memory for large arrays, in the system's large pages where it has them: giving a program 100 MB page by
// page takes longer than counting the words in them. Values without a constructor of their own aren't set to
// 0, so that what is read from a file isn't written twice.
template <typename Value> struct LargePages {
    using value_type = Value;

    LargePages() = default;
    template <typename Other> LargePages(const LargePages<Other>&) noexcept { }

    Value* allocate(std::size_t count);
    void deallocate(Value* memory, std::size_t count) noexcept;

    template <typename Other, typename... Arguments> void construct(Other* place, Arguments&&... arguments)
    {
        if constexpr (sizeof...(Arguments) == 0 && std::is_trivially_default_constructible_v<Other>)
            ::new (static_cast<void*>(place)) Other;
        else
            ::new (static_cast<void*>(place)) Other(std::forward<Arguments>(arguments)...);
    }

    bool operator==(const LargePages&) const = default;
};

namespace Detail {

void* largeAllocation(std::size_t size); // Throws std::bad_alloc.
void releaseLargeAllocation(void* memory, std::size_t size) noexcept;

} // namespace Detail

template <typename Value> Value* LargePages<Value>::allocate(std::size_t count)
{
    if (count > static_cast<std::size_t>(-1) / 2 / sizeof(Value))
        throw std::bad_array_new_length();
    return static_cast<Value*>(Detail::largeAllocation(count * sizeof(Value)));
}

template <typename Value> void LargePages<Value>::deallocate(Value* memory, std::size_t count) noexcept
{
    Detail::releaseLargeAllocation(memory, count * sizeof(Value));
}

template <typename Value> using LargeVector = std::vector<Value, LargePages<Value>>;

} // namespace Base
