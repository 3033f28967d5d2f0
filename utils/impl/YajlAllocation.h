#ifndef ORV_UTILS_IMPL_YAJLALLOCATION_H
#define ORV_UTILS_IMPL_YAJLALLOCATION_H

#include <yajl/yajl_common.h>

namespace orv {
namespace utils {
namespace impl {

/// Allocation functions that give the parser's memory from the library allocator, so that a
/// parse shows up in the allocator's counters like every other object of the library.
/// A fresh copy each time, as the parser's interface takes the table by a non-const pointer.
yajl_alloc_funcs getYajlAllocationFunctions();

} // namespace impl
} // namespace utils
} // namespace orv

#endif
