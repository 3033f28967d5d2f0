#ifndef ORV_UTILS_SCOPEDPTR_H
#define ORV_UTILS_SCOPEDPTR_H

#include <orv/allocator/Allocator.h>
#include <orv/utils/Assertion.h>

namespace orv {
namespace utils {

/// Sole ownership of one object made with ORV_NEW; destroys and releases it through the library
/// allocator.
template <typename T>
class ScopedPtr {
public:
    explicit ScopedPtr(T* pointer = nullptr) : pointer_(pointer) {}
    ~ScopedPtr() { ORV_DELETE(pointer_); }

    /// Takes `pointer` and destroys the old object. The new pointer is stored first, so that the
    /// old object's destructor already sees the holder updated.
    void reset(T* pointer = nullptr)
    {
        ORV_CHECK(pointer_ == nullptr || pointer_ != pointer, "resetting a scoped ptr to itself!");
        T* old = pointer_;
        pointer_ = pointer;
        if (old != nullptr && old != pointer) {
            ORV_DELETE(old);
        }
    }

    T* get() const { return pointer_; }

    /// A returning hook gets a zero-filled stand-in rather than a null reference.
    T& operator*() const
    {
        ORV_CHECK(pointer_ != nullptr, "accessing a null scoped ptr");
        if (pointer_ == nullptr) {
            alignas(T) static unsigned char standIn[sizeof(T)] = {};
            return *reinterpret_cast<T*>(standIn);
        }
        return *pointer_;
    }

    T* operator->() const
    {
        ORV_CHECK(pointer_ != nullptr, "accessing a null scoped ptr");
        return pointer_;
    }

    ScopedPtr(const ScopedPtr&) = delete;
    ScopedPtr& operator=(const ScopedPtr&) = delete;

private:
    T* pointer_;
};

} // namespace utils
} // namespace orv

#endif
