#ifndef ORV_ALLOCATOR_STDALLOCATOR_H
#define ORV_ALLOCATOR_STDALLOCATOR_H

#include <orv/allocator/Allocator.h>

#include <cstddef>
#include <new>

namespace orv {
namespace allocator {

/// Standard-library allocator over Allocator, so that containers take their memory from it.
template <typename T>
class StdAllocator {
public:
    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using propagate_on_container_move_assignment = std::true_type;
    using is_always_equal = std::true_type;

    template <typename U>
    struct rebind {
        using other = StdAllocator<U>;
    };

    StdAllocator() noexcept = default;
    template <typename U>
    StdAllocator(const StdAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        void* memory = Allocator::instance().allocate(count * sizeof(T), "StdAllocator", 0);
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }

    void deallocate(T* pointer, std::size_t count) noexcept
    {
        Allocator::instance().deallocate(pointer, count * sizeof(T));
    }

    template <typename U>
    bool operator==(const StdAllocator<U>&) const noexcept
    {
        return true;
    }
    template <typename U>
    bool operator!=(const StdAllocator<U>&) const noexcept
    {
        return false;
    }
};

} // namespace allocator
} // namespace orv

#endif
