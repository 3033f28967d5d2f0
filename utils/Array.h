#ifndef ORV_UTILS_ARRAY_H
#define ORV_UTILS_ARRAY_H

#include <orv/utils/details/ArrayAllocation.h>

#include <climits>
#include <new>

namespace orv {
namespace utils {

/// An owned buffer of a length fixed at construction, its elements value-initialized. The
/// buffer comes from the array allocation form, which puts a 32-bit count word ahead of it.
template <typename T>
class Array {
    // The elements start right after the count word, at an address aligned to 4 bytes only.
    static_assert(alignof(T) <= 4, "Array elements must not need an alignment beyond 4 bytes");

public:
    /// When memory runs out, or the byte count does not fit the count word, the array is empty.
    explicit Array(unsigned int length) : data_(nullptr), length_(0)
    {
        if (length > UINT_MAX / sizeof(T)) {
            return;
        }
        void* buffer = details::allocateArray(static_cast<unsigned int>(length * sizeof(T)), __FILE__, __LINE__);
        if (buffer == nullptr) {
            return;
        }
        data_ = static_cast<T*>(buffer);
        for (; length_ < length; ++length_) {
            new (data_ + length_) T();
        }
    }

    ~Array()
    {
        while (length_ > 0) {
            data_[--length_].~T();
        }
        details::releaseArray(data_);
    }

    unsigned int size() const { return length_; }

    T& operator[](unsigned int index) { return data_[index]; }
    const T& operator[](unsigned int index) const { return data_[index]; }

    T* data() { return data_; }
    const T* data() const { return data_; }
    T* begin() { return data_; }
    T* end() { return data_ + length_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + length_; }

    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;

private:
    T* data_;
    unsigned int length_;
};

} // namespace utils
} // namespace orv

#endif
