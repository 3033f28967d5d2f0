#include <orv/utils/impl/YajlAllocation.h>

#include <orv/allocator/Allocator.h>

#include <cstddef>
#include <cstring>

namespace orv {
namespace utils {
namespace impl {
namespace {

// A reallocation needs the old size for its copy, and the library allocator doesn't give it
// out: each block carries its size ahead of the pointer handed to the parser.
constexpr std::size_t blockHeader = alignof(std::max_align_t);

void* allocateBlock(void*, std::size_t size)
{
    void* memory = allocator::Allocator::instance().allocate(size + blockHeader, __FILE__, __LINE__);
    if (memory == nullptr) {
        return nullptr;
    }
    *static_cast<std::size_t*>(memory) = size;
    return static_cast<char*>(memory) + blockHeader;
}

void releaseBlock(void*, void* pointer)
{
    if (pointer != nullptr) {
        allocator::Allocator::instance().deallocate(static_cast<char*>(pointer) - blockHeader);
    }
}

void* reallocateBlock(void* context, void* pointer, std::size_t size)
{
    void* block = allocateBlock(context, size);
    if (block == nullptr || pointer == nullptr) {
        return block;
    }
    const std::size_t oldSize = *reinterpret_cast<std::size_t*>(static_cast<char*>(pointer) - blockHeader);
    std::memcpy(block, pointer, oldSize < size ? oldSize : size);
    releaseBlock(context, pointer);
    return block;
}

} // namespace

yajl_alloc_funcs getYajlAllocationFunctions()
{
    return yajl_alloc_funcs { &allocateBlock, &reallocateBlock, &releaseBlock, nullptr };
}

} // namespace impl
} // namespace utils
} // namespace orv
