#pragma once

#include <cstddef>
#include <memory>

namespace kel
{

/// Overwrites memory before it gives it back, so that what was secret in it cannot turn up elsewhere.
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
        auto *bytes = reinterpret_cast<volatile char *>(memory); // volatile: or the compiler sees no use in it
        for (std::size_t i = 0; i < count * sizeof(T); ++i)
            bytes[i] = 0;
        std::allocator<T>().deallocate(memory, count);
    }

    friend bool operator==(const WipingAllocator &, const WipingAllocator &) { return true; }
    friend bool operator!=(const WipingAllocator &, const WipingAllocator &) { return false; }
};

} // namespace kel
