#include <orv/allocator/Allocator.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>

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

struct State {
    std::atomic<std::size_t> liveBlocks{0};
    std::atomic<std::size_t> liveBytes{0};
    std::atomic<unsigned long long> nextSerial{1};
    std::atomic<bool> tracking{false};
    mutable std::mutex listMutex;
    TrackedNode head{&head, &head, 0, nullptr, 0, 0, 0};
};

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
    unsigned char* raw = static_cast<unsigned char*>(std::malloc(header + size));
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
    std::free(raw);
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
