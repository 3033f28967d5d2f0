#ifndef ORV_UTILS_COMMON_H
#define ORV_UTILS_COMMON_H

#include <orv/allocator/StdAllocator.h>
#include <orv/utils/Export.h>

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace orv {
namespace utils {

/// The standard string and containers, with all their memory taken from the library allocator.
using String = std::basic_string<char, std::char_traits<char>, allocator::StdAllocator<char>>;
template <typename T>
using Vector = std::vector<T, allocator::StdAllocator<T>>;
template <typename T>
using Deque = std::deque<T, allocator::StdAllocator<T>>;
template <typename K, typename V, typename Compare = std::less<K>>
using Map = std::map<K, V, Compare, allocator::StdAllocator<std::pair<const K, V>>>;
template <typename T, typename Compare = std::less<T>>
using Set = std::set<T, Compare, allocator::StdAllocator<T>>;

/// The failure value of index interfaces: all 32 bits set.
constexpr unsigned int invalidIndex = 0xFFFFFFFFu;

} // namespace utils
} // namespace orv

#endif
