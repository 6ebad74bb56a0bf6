#pragma once

#include <cstddef>
#include <memory>

namespace kel
{

/// Overwrites memory before it is freed, so that secrets cannot be found in it later.
template <typename T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() = default;
    template <typename U>
    WipingAllocator(const WipingAllocator<U> &)
    {
    }

    T *allocate(std::size_t count) { return std::allocator<T>().allocate(count); }

    void deallocate(T *memory, std::size_t count)
    {
        // volatile, or the compiler drops stores to memory that is about to be freed.
        auto *bytes = reinterpret_cast<volatile char *>(memory);
        for (std::size_t i = 0; i < count * sizeof(T); ++i)
            bytes[i] = 0;
        std::allocator<T>().deallocate(memory, count);
    }

    friend bool operator==(const WipingAllocator &, const WipingAllocator &) { return true; }
    friend bool operator!=(const WipingAllocator &, const WipingAllocator &) { return false; }
};

} // namespace kel
