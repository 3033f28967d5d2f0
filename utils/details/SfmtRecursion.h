#ifndef ORV_UTILS_DETAILS_SFMTRECURSION_H
#define ORV_UTILS_DETAILS_SFMTRECURSION_H

// The SFMT19937 recursion over the whole state, in both directions. The state is 624 words seen
// as 156 blocks of 128 bits; word 0 is the low word of block 0. Each block is a pair of 64-bit
// halves in the portable form and one SSE2 register where the compiler has it; both forms give
// the same words.

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace orv {
namespace utils {
namespace details {
namespace sfmt {

constexpr unsigned int blockCount = 156;
constexpr unsigned int wordCount = 624;
constexpr unsigned int pos1 = 122;
// After block 33, the block 122 places ahead has wrapped round and already holds its new value.
constexpr unsigned int firstWrappedBlock = blockCount - pos1;
constexpr unsigned int sl1 = 18;
constexpr unsigned int sl2Bytes = 1;
constexpr unsigned int sr1 = 11;
constexpr unsigned int sr2Bytes = 1;
constexpr std::uint32_t mask1 = 0xDFFFFFEFu;
constexpr std::uint32_t mask2 = 0xDDFECB7Fu;
constexpr std::uint32_t mask3 = 0xBFFAFFFFu;
constexpr std::uint32_t mask4 = 0xBFFFFFF6u;

namespace portable {

struct Block {
    std::uint64_t low;
    std::uint64_t high;
};

inline Block load(const std::uint32_t* words, unsigned int block)
{
    const std::uint32_t* w = words + 4 * block;
    return Block{w[0] | (std::uint64_t(w[1]) << 32), w[2] | (std::uint64_t(w[3]) << 32)};
}

inline void store(std::uint32_t* words, unsigned int block, const Block& value)
{
    std::uint32_t* w = words + 4 * block;
    w[0] = static_cast<std::uint32_t>(value.low);
    w[1] = static_cast<std::uint32_t>(value.low >> 32);
    w[2] = static_cast<std::uint32_t>(value.high);
    w[3] = static_cast<std::uint32_t>(value.high >> 32);
}

// Shifts of the whole 128 bits by 8 to 64 bits.
inline Block shiftLeft(const Block& x, unsigned int bits)
{
    if (bits == 64) {
        return Block{0, x.low};
    }
    return Block{x.low << bits, (x.high << bits) | (x.low >> (64 - bits))};
}

inline Block shiftRight(const Block& x, unsigned int bits)
{
    return Block{(x.low >> bits) | (x.high << (64 - bits)), x.high >> bits};
}

inline Block operator^(const Block& x, const Block& y)
{
    return Block{x.low ^ y.low, x.high ^ y.high};
}

// The terms of b, c and d, which the forward step adds to a ^ (a << 8).
inline Block mixed(const Block& b, const Block& c, const Block& d)
{
    constexpr std::uint64_t maskLow = mask1 | (std::uint64_t(mask2) << 32);
    constexpr std::uint64_t maskHigh = mask3 | (std::uint64_t(mask4) << 32);
    // Shifts within each 32-bit word: the bits that would cross into the neighbour word are cut.
    constexpr std::uint64_t keptRight = (std::uint64_t(0xFFFFFFFFu >> sr1) << 32) | (0xFFFFFFFFu >> sr1);
    constexpr std::uint64_t keptLeft = (std::uint64_t(0xFFFFFFFFu << sl1) << 32) | std::uint32_t(0xFFFFFFFFu << sl1);
    const Block bTerm{(b.low >> sr1) & keptRight & maskLow, (b.high >> sr1) & keptRight & maskHigh};
    const Block dTerm{(d.low << sl1) & keptLeft, (d.high << sl1) & keptLeft};
    return bTerm ^ shiftRight(c, 8 * sr2Bytes) ^ dTerm;
}

inline void forwardPass(std::uint32_t* words)
{
    Block c = load(words, blockCount - 2);
    Block d = load(words, blockCount - 1);
    for (unsigned int i = 0; i < blockCount; ++i) {
        const Block a = load(words, i);
        const unsigned int j = i < firstWrappedBlock ? i + pos1 : i - firstWrappedBlock;
        const Block r = a ^ shiftLeft(a, 8 * sl2Bytes) ^ mixed(load(words, j), c, d);
        store(words, i, r);
        c = d;
        d = r;
    }
}

inline void backwardPass(std::uint32_t* words)
{
    for (unsigned int i = blockCount; i-- > 0;) {
        Block t = load(words, i) ^ mixed(load(words, (i + pos1) % blockCount), load(words, (i + blockCount - 2) % blockCount),
                                          load(words, (i + blockCount - 1) % blockCount));
        t = t ^ shiftLeft(t, 64);
        t = t ^ shiftLeft(t, 32);
        t = t ^ shiftLeft(t, 16);
        t = t ^ shiftLeft(t, 8);
        store(words, i, t);
    }
}

} // namespace portable

#if defined(__SSE2__)
namespace sse2 {

inline __m128i mask()
{
    return _mm_set_epi32(static_cast<int>(mask4), static_cast<int>(mask3), static_cast<int>(mask2),
                         static_cast<int>(mask1));
}

inline __m128i mixed(__m128i b, __m128i c, __m128i d, __m128i mask)
{
    const __m128i bTerm = _mm_and_si128(_mm_srli_epi32(b, sr1), mask);
    const __m128i dTerm = _mm_slli_epi32(d, sl1);
    return _mm_xor_si128(_mm_xor_si128(bTerm, _mm_srli_si128(c, sr2Bytes)), dTerm);
}

inline __m128i step(__m128i a, __m128i b, __m128i c, __m128i d, __m128i mask)
{
    return _mm_xor_si128(_mm_xor_si128(a, _mm_slli_si128(a, sl2Bytes)), mixed(b, c, d, mask));
}

inline void forwardPass(std::uint32_t* words)
{
    __m128i* blocks = reinterpret_cast<__m128i*>(words);
    const __m128i m = mask();
    __m128i c = _mm_loadu_si128(blocks + blockCount - 2);
    __m128i d = _mm_loadu_si128(blocks + blockCount - 1);
    unsigned int i = 0;
    for (; i < firstWrappedBlock; ++i) {
        const __m128i r = step(_mm_loadu_si128(blocks + i), _mm_loadu_si128(blocks + i + pos1), c, d, m);
        _mm_storeu_si128(blocks + i, r);
        c = d;
        d = r;
    }
    for (; i < blockCount; ++i) {
        const __m128i r = step(_mm_loadu_si128(blocks + i), _mm_loadu_si128(blocks + i - firstWrappedBlock), c, d, m);
        _mm_storeu_si128(blocks + i, r);
        c = d;
        d = r;
    }
}

inline void backwardPass(std::uint32_t* words)
{
    __m128i* blocks = reinterpret_cast<__m128i*>(words);
    const __m128i m = mask();
    for (unsigned int i = blockCount; i-- > 0;) {
        const __m128i b = _mm_loadu_si128(blocks + (i + pos1) % blockCount);
        const __m128i c = _mm_loadu_si128(blocks + (i + blockCount - 2) % blockCount);
        const __m128i d = _mm_loadu_si128(blocks + (i + blockCount - 1) % blockCount);
        __m128i t = _mm_xor_si128(_mm_loadu_si128(blocks + i), mixed(b, c, d, m));
        // a ^ (a << 8) undone: a = t ^ (t << 8) ^ (t << 16) ^ ... ^ (t << 120), in four folds.
        t = _mm_xor_si128(t, _mm_slli_si128(t, 8));
        t = _mm_xor_si128(t, _mm_slli_si128(t, 4));
        t = _mm_xor_si128(t, _mm_slli_si128(t, 2));
        t = _mm_xor_si128(t, _mm_slli_si128(t, 1));
        _mm_storeu_si128(blocks + i, t);
    }
}

} // namespace sse2
#endif

/// Regenerates the whole state once, blocks in increasing order.
inline void forwardPass(std::uint32_t* words)
{
#if defined(__SSE2__)
    sse2::forwardPass(words);
#else
    portable::forwardPass(words);
#endif
}

/// Gives back the state that the last forward pass started from. Blocks go in decreasing order,
/// so that each neighbour still holds the value the forward pass saw when it wrote this block.
inline void backwardPass(std::uint32_t* words)
{
#if defined(__SSE2__)
    sse2::backwardPass(words);
#else
    portable::backwardPass(words);
#endif
}

} // namespace sfmt
} // namespace details
} // namespace utils
} // namespace orv

#endif
