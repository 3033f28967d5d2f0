#ifndef ORV_ALLOCATOR_ALLOCATOR_H
#define ORV_ALLOCATOR_ALLOCATOR_H

#include <orv/allocator/Export.h>

#include <cstddef>
#include <functional>
#include <new>

namespace orv {
namespace allocator {

/// One live block, as reported by Allocator::forEachLiveBlock.
struct BlockInfo {
    std::size_t size;
    const char* file;
    unsigned int line;
    unsigned long long serial;
};

/// The process-wide allocator of the runtime. Every block carries a small header, so a release
/// needs no size. Counters of live blocks and bytes are always kept; the list of live blocks with
/// their file and line only while block tracking is on, which is what leak checks use.
class ORV_ALLOCATOR_API Allocator {
public:
    static Allocator& instance();

    /// Null when the system has no memory left (never throws).
    void* allocate(std::size_t size, const char* file = nullptr, unsigned int line = 0);
    /// `size` is informative only: the block knows its size. Null is ignored.
    void deallocate(void* pointer, std::size_t size = 0);
    /// Moves a block to a new size, keeping its first bytes (as many as both sizes hold); null
    /// when the system has no memory left, the old block then kept as it was. A large block can
    /// grow in place or have its pages moved rather than copied, which a growing buffer needs.
    /// Null `pointer` allocates.
    void* reallocate(void* pointer, std::size_t size, const char* file = nullptr, unsigned int line = 0);

    std::size_t getLiveBlockCount() const;
    std::size_t getLiveByteCount() const;
    /// Serial number the next allocation will get; blocks allocated after a mark have serials >= it.
    unsigned long long getNextSerial() const;

    /// Released blocks of 1 KB to 64 KB are kept for reuse by later requests of the same size, up to
    /// a limit (64 MB unless set): memory an object gave back is ready, its pages already mapped,
    /// for the next one. Blocks allocated while tracking is on are never kept.
    std::size_t getCachedByteCount() const;
    /// A lower limit than what is kept hands all kept blocks back to the system; 0 keeps none.
    void setCacheLimit(std::size_t bytes);
    void releaseCachedBlocks();

    /// Blocks allocated while tracking is on are listed until released.
    void setBlockTracking(bool enabled);
    bool isBlockTracking() const;
    /// Visits the tracked live blocks, oldest first, whose serial is at least `fromSerial`.
    void forEachLiveBlock(unsigned long long fromSerial, const std::function<void(const BlockInfo&)>& visitor) const;

    Allocator(const Allocator&) = delete;
    Allocator& operator=(const Allocator&) = delete;

private:
    Allocator();
    ~Allocator();
};

/// Destroys an object made by the placement allocation form and releases its memory.
template <typename T>
void destroy(T* object, const char* file, unsigned int line)
{
    (void)file;
    (void)line;
    if (object == nullptr) {
        return;
    }
    object->~T();
    Allocator::instance().deallocate(const_cast<void*>(static_cast<const void*>(object)));
}

} // namespace allocator
} // namespace orv

/// Placement allocation form: `new (orv::allocator::Allocator::instance(), __FILE__, __LINE__) T(...)`.
/// It does not throw: when memory runs out the new-expression yields null and constructs nothing.
ORV_ALLOCATOR_API void* operator new(std::size_t size, orv::allocator::Allocator& allocator, const char* file,
                                     unsigned int line) noexcept;
ORV_ALLOCATOR_API void* operator new[](std::size_t size, orv::allocator::Allocator& allocator, const char* file,
                                       unsigned int line) noexcept;
/// Placement release forms; the compiler also calls them when a constructor throws.
ORV_ALLOCATOR_API void operator delete(void* pointer, orv::allocator::Allocator& allocator, const char* file,
                                       unsigned int line) noexcept;
ORV_ALLOCATOR_API void operator delete[](void* pointer, orv::allocator::Allocator& allocator, const char* file,
                                         unsigned int line) noexcept;

/// Allocates and constructs an object through the library allocator, stamping the call's file and line.
#define ORV_NEW(T) new (::orv::allocator::Allocator::instance(), __FILE__, __LINE__) T
/// Destroys and releases an object made with ORV_NEW.
#define ORV_DELETE(pointer) ::orv::allocator::destroy((pointer), __FILE__, __LINE__)

#endif
