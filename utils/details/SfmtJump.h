#ifndef ORV_UTILS_DETAILS_SFMTJUMP_H
#define ORV_UTILS_DETAILS_SFMTJUMP_H

#include <cstdint>

namespace orv {
namespace utils {
namespace details {
namespace sfmt {

/// Gives the state that `passes` forward passes would give, at a cost that grows with the number
/// of bits of `passes` rather than with `passes`: the block sequence is linear over GF(2), so a move
/// of N blocks is a polynomial in the one-block step, reduced modulo the recurrence of the sequence.
void jumpForward(std::uint32_t* words, unsigned long long passes);
/// Gives the state that `passes` backward passes would give, in the same way.
void jumpBackward(std::uint32_t* words, unsigned long long passes);

} // namespace sfmt
} // namespace details
} // namespace utils
} // namespace orv

#endif
