#ifndef ORV_UTILS_DETAILS_BLOCKADDRESSSET_H
#define ORV_UTILS_DETAILS_BLOCKADDRESSSET_H

#include <orv/utils/Common.h>

#include <cstdint>

namespace orv {
namespace utils {
namespace details {

/// The set of blocks a BlockAllocator has handed out: open addressing with linear probing in one
/// array, so that recording and forgetting a block allocates nothing once the array has grown.
/// Copying an object hands a whole object's blocks out and back, and a node-based set made that
/// cost more than the copy of the bytes.
template <typename T>
class BlockAddressSet {
public:
    std::size_t size() const { return size_; }

    /// False when the address is already there.
    bool insert(T* address)
    {
        if ((used_ + 1) * 4 > slots_.size() * 3) {
            rehash(size_ * 2 < slots_.size() / 2 ? slots_.size() : (slots_.empty() ? 16 : slots_.size() * 2));
        }
        std::size_t slot = home(address);
        std::size_t reusable = slots_.size();
        while (slots_[slot] != nullptr) {
            if (slots_[slot] == address) {
                return false;
            }
            if (slots_[slot] == removed() && reusable == slots_.size()) {
                reusable = slot;
            }
            slot = (slot + 1) & (slots_.size() - 1);
        }
        if (reusable != slots_.size()) {
            slot = reusable;
        } else {
            ++used_;
        }
        slots_[slot] = address;
        ++size_;
        return true;
    }

    /// False when the address is not there.
    bool erase(T* address)
    {
        if (slots_.empty() || address == nullptr || address == removed()) {
            return false;
        }
        for (std::size_t slot = home(address); slots_[slot] != nullptr; slot = (slot + 1) & (slots_.size() - 1)) {
            if (slots_[slot] == address) {
                slots_[slot] = removed();
                --size_;
                return true;
            }
        }
        return false;
    }

    template <typename Visit>
    void forEach(Visit visit) const
    {
        for (T* address : slots_) {
            if (address != nullptr && address != removed()) {
                visit(address);
            }
        }
    }

private:
    // Blocks come from the library allocator, aligned well above 1: this value is never a block.
    static T* removed() { return reinterpret_cast<T*>(std::uintptr_t(1)); }

    std::size_t home(T* address) const
    {
        const std::uint64_t bits = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(address));
        return static_cast<std::size_t>((bits * 0x9E3779B97F4A7C15ull) >> 32) & (slots_.size() - 1);
    }

    void rehash(std::size_t capacity)
    {
        Vector<T*> old(capacity, nullptr);
        old.swap(slots_);
        size_ = 0;
        used_ = 0;
        for (T* address : old) {
            if (address != nullptr && address != removed()) {
                insert(address);
            }
        }
    }

    Vector<T*> slots_;
    std::size_t size_ = 0;
    // Slots that end a probe early: live addresses and removal marks.
    std::size_t used_ = 0;
};

} // namespace details
} // namespace utils
} // namespace orv

#endif
