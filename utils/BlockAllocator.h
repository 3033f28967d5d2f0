#ifndef ORV_UTILS_BLOCKALLOCATOR_H
#define ORV_UTILS_BLOCKALLOCATOR_H

#include <orv/allocator/Allocator.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/Common.h>
#include <orv/utils/Mutex.h>
#include <orv/utils/details/BlockAddressSet.h>

namespace orv {
namespace utils {

class DynamicObject;

/// Hands out fixed blocks of `blockSize` uninitialised T and takes them back for reuse, so that
/// objects sharing one allocator recycle each other's blocks. Only `allocate` and `deallocate` lock:
/// objects on different threads may share an allocator as long as they share nothing else.
template <typename T>
class BlockAllocator {
public:
    explicit BlockAllocator(unsigned int blockSize) : blockSize_(blockSize) {}

    ~BlockAllocator()
    {
        allocator::Allocator& memory = allocator::Allocator::instance();
        allocated_.forEach([&memory](T* block) { memory.deallocate(block); });
        for (T* block : returned_) {
            memory.deallocate(block);
        }
    }

    /// A block of `blockSize` T, not cleared; null when the library allocator has no memory left.
    T* allocate()
    {
        mutex_.lock(nullptr);
        T* block = nullptr;
        if (!returned_.empty()) {
            block = returned_.back();
            returned_.pop_back();
        } else {
            block = static_cast<T*>(
                allocator::Allocator::instance().allocate(sizeof(T) * blockSize_, __FILE__, __LINE__));
        }
        if (block != nullptr) {
            allocated_.insert(block);
        }
        mutex_.unlock(nullptr);
        return block;
    }

    void deallocate(T* block)
    {
        mutex_.lock(nullptr);
        const bool found = allocated_.erase(block);
        ORV_CHECK(found, "unable to find address among allocated blocks, unable to free");
        // The hook returned: a block this allocator never handed out is left alone.
        if (found) {
            returned_.push_back(block);
        }
        mutex_.unlock(nullptr);
    }

    unsigned int getBlockSize() const { return blockSize_; }

    BlockAllocator(const BlockAllocator&) = delete;
    BlockAllocator& operator=(const BlockAllocator&) = delete;

private:
    // DynamicObject reads the block size on every node lookup.
    friend class DynamicObject;

    unsigned int blockSize_;
    details::BlockAddressSet<T> allocated_;
    Vector<T*> returned_;
    Mutex mutex_;
};

} // namespace utils
} // namespace orv

#endif
