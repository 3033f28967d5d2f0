#include <orv/allocator/Allocator.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>

// Under the address checker a cached block stays poisoned, so that a use after release is still
// caught although the memory is not returned.
#if defined(__SANITIZE_ADDRESS__)
#define ORV_ALLOCATOR_WITH_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_ALLOCATOR_WITH_ASAN 1
#endif
#endif
#ifdef ORV_ALLOCATOR_WITH_ASAN
#include <sanitizer/asan_interface.h>
#define ORV_ALLOCATOR_POISON(address, size) ASAN_POISON_MEMORY_REGION((address), (size))
#define ORV_ALLOCATOR_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION((address), (size))
#else
#define ORV_ALLOCATOR_POISON(address, size) ((void)(address), (void)(size))
#define ORV_ALLOCATOR_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

namespace orv {
namespace allocator {
namespace {

// Every block starts with a prefix whose last word says how it was made. An untracked block has
// only {size, flags}; a tracked block adds a list node ahead of them, so that the release of any
// block finds its header from the pointer alone, whatever tracking says at release time.
struct Prefix {
    std::size_t size;
    std::size_t flags;
};

struct TrackedNode {
    TrackedNode* previous;
    TrackedNode* next;
    unsigned long long serial;
    const char* file;
    unsigned int line;
    unsigned int padding;
    std::size_t reserved;
};

constexpr std::size_t trackedFlag = 1;
constexpr std::size_t untrackedHeader = sizeof(Prefix);
constexpr std::size_t trackedHeader = sizeof(TrackedNode) + sizeof(Prefix);
static_assert(untrackedHeader % 16 == 0, "blocks keep the alignment of malloc");
static_assert(trackedHeader % 16 == 0, "blocks keep the alignment of malloc");

// Released untracked blocks of the sizes that come and go in bulk (the node blocks of dynamic
// objects, stream buffers) wait here for the next request of the same size instead of going back
// to the system: a block the system took back costs a fault per page when it is touched again, and
// an object of many blocks built after another was freed would pay it for all of them.
constexpr std::size_t cachedMinimum = 1024;
constexpr std::size_t cachedMaximum = 64 * 1024;
constexpr std::size_t cacheBinCount = 8;
constexpr std::size_t defaultCacheLimit = 64 * 1024 * 1024;

/// A cached block is linked to the next through the flags word of its header, which stays readable
/// while the rest of the block is poisoned for the address checker: its leak scan must see the
/// whole chain.
constexpr std::size_t cacheLinkOffset = offsetof(Prefix, flags);

/// Cached blocks of one size, linked through their headers.
struct CacheBin {
    std::size_t size;
    std::size_t count;
    void* head;
};

struct State {
    std::atomic<std::size_t> liveBlocks{0};
    std::atomic<std::size_t> liveBytes{0};
    std::atomic<unsigned long long> nextSerial{1};
    std::atomic<bool> tracking{false};
    mutable std::mutex listMutex;
    TrackedNode head{&head, &head, 0, nullptr, 0, 0, 0};

    std::mutex cacheMutex;
    CacheBin bins[cacheBinCount] = {};
    std::size_t cachedBytes = 0;
    std::size_t cacheLimit = defaultCacheLimit;
};

bool isCachedSize(std::size_t size)
{
    return size >= cachedMinimum && size <= cachedMaximum;
}

/// Hands the blocks of one bin back to the system; the cache lock is held.
void emptyBin(State& s, CacheBin& bin)
{
    while (bin.head != nullptr) {
        unsigned char* raw = static_cast<unsigned char*>(bin.head);
        ORV_ALLOCATOR_UNPOISON(raw + untrackedHeader, bin.size);
        std::memcpy(&bin.head, raw + cacheLinkOffset, sizeof(void*));
        std::free(raw);
    }
    s.cachedBytes -= bin.count * bin.size;
    bin.count = 0;
}

/// A cached untracked block of `size` bytes (its header still in place), or null.
unsigned char* takeCached(State& s, std::size_t size)
{
    std::lock_guard<std::mutex> lock(s.cacheMutex);
    for (CacheBin& bin : s.bins) {
        if (bin.size == size && bin.head != nullptr) {
            unsigned char* raw = static_cast<unsigned char*>(bin.head);
            ORV_ALLOCATOR_UNPOISON(raw + untrackedHeader, size);
            std::memcpy(&bin.head, raw + cacheLinkOffset, sizeof(void*));
            --bin.count;
            s.cachedBytes -= size;
            return raw;
        }
    }
    return nullptr;
}

/// Keeps an untracked block for reuse; false when the cache has no room for it.
bool keepCached(State& s, unsigned char* raw, std::size_t size)
{
    std::lock_guard<std::mutex> lock(s.cacheMutex);
    if (s.cachedBytes + size > s.cacheLimit) {
        return false;
    }
    // The bin of this size, or else the one holding the fewest bytes: one-off sizes (a buffer that
    // grew once) must not keep the bins from the sizes that come back.
    CacheBin* target = &s.bins[0];
    for (CacheBin& bin : s.bins) {
        if (bin.size == size) {
            target = &bin;
            break;
        }
        if (bin.count * bin.size < target->count * target->size) {
            target = &bin;
        }
    }
    if (target->size != size) {
        emptyBin(s, *target);
        target->size = size;
    }
    std::memcpy(raw + cacheLinkOffset, &target->head, sizeof(void*));
    target->head = raw;
    ++target->count;
    s.cachedBytes += size;
    ORV_ALLOCATOR_POISON(raw + untrackedHeader, size);
    return true;
}

/// Hands every cached block back to the system.
void releaseCache(State& s)
{
    std::lock_guard<std::mutex> lock(s.cacheMutex);
    for (CacheBin& bin : s.bins) {
        emptyBin(s, bin);
    }
}

State& state()
{
    // Never destroyed: blocks may be released by static destructors after main returns.
    static State* instance = new State;
    return *instance;
}

} // namespace

Allocator::Allocator() = default;
Allocator::~Allocator() = default;

Allocator& Allocator::instance()
{
    static Allocator* allocator = new Allocator;
    return *allocator;
}

void* Allocator::allocate(std::size_t size, const char* file, unsigned int line)
{
    State& s = state();
    const bool tracked = s.tracking.load(std::memory_order_relaxed);
    const std::size_t header = tracked ? trackedHeader : untrackedHeader;
    if (size > SIZE_MAX - header) {
        return nullptr;
    }
    unsigned char* raw = !tracked && isCachedSize(size) ? takeCached(s, size) : nullptr;
    if (raw == nullptr) {
        raw = static_cast<unsigned char*>(std::malloc(header + size));
    }
    if (raw == nullptr) {
        return nullptr;
    }
    const unsigned long long serial = s.nextSerial.fetch_add(1, std::memory_order_relaxed);
    Prefix* prefix = reinterpret_cast<Prefix*>(raw + header - sizeof(Prefix));
    prefix->size = size;
    prefix->flags = tracked ? trackedFlag : 0;
    if (tracked) {
        TrackedNode* node = reinterpret_cast<TrackedNode*>(raw);
        node->serial = serial;
        node->file = file;
        node->line = line;
        std::lock_guard<std::mutex> lock(s.listMutex);
        node->next = &s.head;
        node->previous = s.head.previous;
        s.head.previous->next = node;
        s.head.previous = node;
    }
    s.liveBlocks.fetch_add(1, std::memory_order_relaxed);
    s.liveBytes.fetch_add(size, std::memory_order_relaxed);
    return raw + header;
}

void Allocator::deallocate(void* pointer, std::size_t)
{
    if (pointer == nullptr) {
        return;
    }
    State& s = state();
    unsigned char* user = static_cast<unsigned char*>(pointer);
    const Prefix* prefix = reinterpret_cast<const Prefix*>(user - sizeof(Prefix));
    const std::size_t size = prefix->size;
    unsigned char* raw = user - untrackedHeader;
    if (prefix->flags & trackedFlag) {
        raw = user - trackedHeader;
        TrackedNode* node = reinterpret_cast<TrackedNode*>(raw);
        std::lock_guard<std::mutex> lock(s.listMutex);
        node->previous->next = node->next;
        node->next->previous = node->previous;
    }
    s.liveBlocks.fetch_sub(1, std::memory_order_relaxed);
    s.liveBytes.fetch_sub(size, std::memory_order_relaxed);
    if ((prefix->flags & trackedFlag) != 0 || !isCachedSize(size) || !keepCached(s, raw, size)) {
        std::free(raw);
    }
}

void* Allocator::reallocate(void* pointer, std::size_t size, const char* file, unsigned int line)
{
    if (pointer == nullptr) {
        return allocate(size, file, line);
    }
    State& s = state();
    unsigned char* user = static_cast<unsigned char*>(pointer);
    Prefix* prefix = reinterpret_cast<Prefix*>(user - sizeof(Prefix));
    const std::size_t oldSize = prefix->size;
    if ((prefix->flags & trackedFlag) != 0 || s.tracking.load(std::memory_order_relaxed)) {
        // A tracked block is linked through its header, and a block made while tracking is on
        // must be listed with this origin: both take a new block.
        void* moved = allocate(size, file, line);
        if (moved == nullptr) {
            return nullptr;
        }
        std::memcpy(moved, pointer, oldSize < size ? oldSize : size);
        deallocate(pointer);
        return moved;
    }
    if (size > SIZE_MAX - untrackedHeader) {
        return nullptr;
    }
    unsigned char* raw = static_cast<unsigned char*>(std::realloc(user - untrackedHeader, untrackedHeader + size));
    if (raw == nullptr) {
        return nullptr;
    }
    reinterpret_cast<Prefix*>(raw)->size = size;
    s.liveBytes.fetch_add(size, std::memory_order_relaxed);
    s.liveBytes.fetch_sub(oldSize, std::memory_order_relaxed);
    return raw + untrackedHeader;
}

std::size_t Allocator::getLiveBlockCount() const
{
    return state().liveBlocks.load(std::memory_order_relaxed);
}

std::size_t Allocator::getLiveByteCount() const
{
    return state().liveBytes.load(std::memory_order_relaxed);
}

unsigned long long Allocator::getNextSerial() const
{
    return state().nextSerial.load(std::memory_order_relaxed);
}

std::size_t Allocator::getCachedByteCount() const
{
    State& s = state();
    std::lock_guard<std::mutex> lock(s.cacheMutex);
    return s.cachedBytes;
}

void Allocator::setCacheLimit(std::size_t bytes)
{
    State& s = state();
    {
        std::lock_guard<std::mutex> lock(s.cacheMutex);
        s.cacheLimit = bytes;
        if (s.cachedBytes <= bytes) {
            return;
        }
    }
    // Simplest to start over: the cache fills again from the next releases.
    releaseCache(s);
}

void Allocator::releaseCachedBlocks()
{
    releaseCache(state());
}

void Allocator::setBlockTracking(bool enabled)
{
    state().tracking.store(enabled, std::memory_order_relaxed);
}

bool Allocator::isBlockTracking() const
{
    return state().tracking.load(std::memory_order_relaxed);
}

void Allocator::forEachLiveBlock(unsigned long long fromSerial,
                                 const std::function<void(const BlockInfo&)>& visitor) const
{
    State& s = state();
    std::lock_guard<std::mutex> lock(s.listMutex);
    for (const TrackedNode* node = s.head.next; node != &s.head; node = node->next) {
        if (node->serial < fromSerial) {
            continue;
        }
        const Prefix* prefix = reinterpret_cast<const Prefix*>(reinterpret_cast<const unsigned char*>(node) +
                                                               trackedHeader - sizeof(Prefix));
        visitor(BlockInfo{prefix->size, node->file, node->line, node->serial});
    }
}

} // namespace allocator
} // namespace orv

void* operator new(std::size_t size, orv::allocator::Allocator& allocator, const char* file,
                   unsigned int line) noexcept
{
    return allocator.allocate(size, file, line);
}

void* operator new[](std::size_t size, orv::allocator::Allocator& allocator, const char* file,
                     unsigned int line) noexcept
{
    return allocator.allocate(size, file, line);
}

void operator delete(void* pointer, orv::allocator::Allocator& allocator, const char*, unsigned int) noexcept
{
    allocator.deallocate(pointer);
}

void operator delete[](void* pointer, orv::allocator::Allocator& allocator, const char*, unsigned int) noexcept
{
    allocator.deallocate(pointer);
}
