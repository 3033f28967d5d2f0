#include <orv/utils/details/SfmtJump.h>

#include <orv/utils/details/SfmtRecursion.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {
namespace details {
namespace sfmt {
namespace {

using portable::Block;
using Word = std::uint64_t;

// The block sequence has a recurrence of degree at most the 19968 bits of the state.
constexpr unsigned int stateBits = 128 * blockCount;
// Enough words for any polynomial of degree stateBits, with a spare word for shifted copies.
constexpr unsigned int polyWords = stateBits / 64 + 2;
// Berlekamp-Massey needs twice the degree in terms to pin the recurrence down.
constexpr unsigned int termCount = 2 * stateBits;
constexpr unsigned int termWords = termCount / 64 + 2;

bool bitAt(const Word* poly, unsigned int index)
{
    return ((poly[index / 64] >> (index % 64)) & 1u) != 0;
}

void setBit(Word* poly, unsigned int index)
{
    poly[index / 64] |= Word(1) << (index % 64);
}

// poly ^= other << shift, over the first `words` words of poly.
void xorShifted(Word* poly, const Word* other, unsigned int shift, unsigned int words)
{
    const unsigned int wordShift = shift / 64;
    const unsigned int bitShift = shift % 64;
    for (unsigned int w = words; w-- > wordShift;) {
        Word value = other[w - wordShift] << bitShift;
        if (bitShift != 0 && w > wordShift) {
            value |= other[w - wordShift - 1] >> (64 - bitShift);
        }
        poly[w] ^= value;
    }
}

// The characteristic polynomial of the sequence: bit k is the coefficient of x^k. Copies shifted
// by 0 to 63 bits let a reduction remove a term with plain word operations.
struct Recurrence {
    unsigned int degree;
    Word shifted[64][polyWords];
};

// One step of the block sequence: the block 156 places ahead of the window's first one.
Block nextBlock(const Block* ring, unsigned int head)
{
    const Block& a = ring[head];
    const Block& b = ring[(head + pos1) % blockCount];
    const Block& c = ring[(head + blockCount - 2) % blockCount];
    const Block& d = ring[(head + blockCount - 1) % blockCount];
    return a ^ portable::shiftLeft(a, 8 * sl2Bytes) ^ portable::mixed(b, c, d);
}

// The lowest bit of each block, from a state of mixed words that `fill` picks.
void sequenceBits(Word* reversed, unsigned int fill)
{
    std::uint32_t words[wordCount];
    std::uint64_t x = 0x9E3779B97F4A7C15u * (fill + 1);
    for (std::uint32_t& word : words) {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        word = static_cast<std::uint32_t>(x >> 16);
    }
    // Stored last term first, so that a discrepancy is a word-wise product with the connection
    // polynomial.
    std::memset(reversed, 0, termWords * sizeof(Word));
    for (unsigned int term = 0; term < termCount; ++term) {
        const unsigned int block = term % blockCount;
        if (block == 0 && term != 0) {
            portable::forwardPass(words);
        }
        if ((words[4 * block] & 1u) != 0) {
            setBit(reversed, termCount - 1 - term);
        }
    }
}

// Berlekamp-Massey over GF(2): the shortest recurrence of the sequence.
void findRecurrence(Recurrence& recurrence, unsigned int fill)
{
    static Word reversed[termWords];
    sequenceBits(reversed, fill);
    Word connection[polyWords] = { 1 };
    Word previous[polyWords] = { 1 };
    Word saved[polyWords];
    unsigned int length = 0;
    unsigned int gap = 1;
    for (unsigned int i = 0; i < termCount; ++i) {
        // The terms s[i - k] for k = 0.. are the reversed bits from termCount - 1 - i on.
        const unsigned int offset = termCount - 1 - i;
        const unsigned int used = std::min(polyWords, length / 64 + 1);
        Word product = 0;
        for (unsigned int w = 0; w < used; ++w) {
            const unsigned int first = offset + 64 * w;
            Word terms = reversed[first / 64] >> (first % 64);
            if (first % 64 != 0 && first / 64 + 1 < termWords) {
                terms |= reversed[first / 64 + 1] << (64 - first % 64);
            }
            product ^= connection[w] & terms;
        }
        for (unsigned int fold = 32; fold > 0; fold >>= 1) {
            product ^= product >> fold;
        }
        if ((product & 1u) == 0) {
            ++gap;
            continue;
        }
        const unsigned int words = std::min(polyWords, (length + gap) / 64 + 2);
        if (2 * length <= i) {
            std::memcpy(saved, connection, sizeof(saved));
            xorShifted(connection, previous, gap, words);
            length = i + 1 - length;
            std::memcpy(previous, saved, sizeof(saved));
            gap = 1;
        } else {
            xorShifted(connection, previous, gap, words);
            ++gap;
        }
    }
    // The characteristic polynomial is the connection polynomial read backwards over `length`.
    recurrence.degree = length;
    Word* poly = recurrence.shifted[0];
    std::memset(poly, 0, sizeof(recurrence.shifted[0]));
    for (unsigned int k = 0; k <= length; ++k) {
        if (bitAt(connection, k)) {
            setBit(poly, length - k);
        }
    }
    for (unsigned int shift = 1; shift < 64; ++shift) {
        std::memset(recurrence.shifted[shift], 0, sizeof(recurrence.shifted[shift]));
        xorShifted(recurrence.shifted[shift], poly, shift, polyWords);
    }
}

const Recurrence& recurrence()
{
    static const Recurrence* const cached = [] {
        // Trivially constructible, so it takes no allocation and needs no guard of its own.
        static Recurrence storage;
        // A recurrence found from one state holds for every state only when it is the
        // characteristic polynomial of the step, of the full degree (Cayley-Hamilton). Some states
        // lie in a smaller invariant subspace and give a factor of it (the first fill gives degree
        // 19965); the next fill gives the full degree.
        for (unsigned int fill = 0; storage.degree != stateBits; ++fill) {
            findRecurrence(storage, fill);
        }
        return &storage;
    }();
    return *cached;
}

// Interleaves zero bits: the square of a polynomial over GF(2) has only its terms doubled.
Word spread(std::uint32_t half)
{
    Word v = half;
    v = (v | (v << 16)) & 0x0000FFFF0000FFFFu;
    v = (v | (v << 8)) & 0x00FF00FF00FF00FFu;
    v = (v | (v << 4)) & 0x0F0F0F0F0F0F0F0Fu;
    v = (v | (v << 2)) & 0x3333333333333333u;
    v = (v | (v << 1)) & 0x5555555555555555u;
    return v;
}

// remainder = remainder^2 mod p.
void squareModulo(Word* remainder, const Recurrence& p)
{
    Word square[2 * polyWords] = {};
    for (unsigned int w = 0; w < polyWords; ++w) {
        square[2 * w] = spread(static_cast<std::uint32_t>(remainder[w]));
        square[2 * w + 1] = spread(static_cast<std::uint32_t>(remainder[w] >> 32));
    }
    for (unsigned int bit = 2 * p.degree; bit-- > p.degree;) {
        if (bitAt(square, bit)) {
            const unsigned int shift = bit - p.degree;
            const Word* copy = p.shifted[shift % 64];
            Word* target = square + shift / 64;
            for (unsigned int w = 0; w < polyWords; ++w) {
                target[w] ^= copy[w];
            }
        }
    }
    std::memcpy(remainder, square, polyWords * sizeof(Word));
}

// remainder = remainder * x mod p.
void timesXModulo(Word* remainder, const Recurrence& p)
{
    for (unsigned int w = polyWords; w-- > 1;) {
        remainder[w] = (remainder[w] << 1) | (remainder[w - 1] >> 63);
    }
    remainder[0] <<= 1;
    if (bitAt(remainder, p.degree)) {
        for (unsigned int w = 0; w < polyWords; ++w) {
            remainder[w] ^= p.shifted[0][w];
        }
    }
}

// remainder = remainder * x^-1 mod p. The step can be undone, so p has the term 1, and
// x * (p - 1) / x = p - 1 = 1 mod p: dividing by x is adding p when the term 1 is set, then
// shifting down.
void timesInverseXModulo(Word* remainder, const Recurrence& p)
{
    if ((remainder[0] & 1u) != 0) {
        for (unsigned int w = 0; w < polyWords; ++w) {
            remainder[w] ^= p.shifted[0][w];
        }
    }
    for (unsigned int w = 0; w + 1 < polyWords; ++w) {
        remainder[w] = (remainder[w] >> 1) | (remainder[w + 1] << 63);
    }
    remainder[polyWords - 1] >>= 1;
}

// The number of blocks in `passes` passes, 156 a pass, as a 128-bit number: passes may go past
// 2^64 / 156. Bit 127 comes first.
struct BlockExponent {
    explicit BlockExponent(unsigned long long passes)
    {
        const unsigned long long lowPart = (passes & 0xFFFFFFFFu) * blockCount;
        const unsigned long long highPart = (passes >> 32) * blockCount;
        low = lowPart + (highPart << 32);
        high = (highPart >> 32) + (low < lowPart ? 1u : 0u);
    }
    bool bit(int index) const { return ((index >= 64 ? high >> (index - 64) : low >> index) & 1u) != 0; }

    unsigned long long low;
    unsigned long long high;
};

// The state after the move that the polynomial `remainder` of the step gives: the sum of
// r_j F^j(state) over its terms, built by Horner's rule: one block step, then the state added if
// r_j is set. The window of 156 blocks lives in a ring whose first block is at `head`.
void applyStepPolynomial(std::uint32_t* words, const Word* remainder, const Recurrence& p)
{
    Block start[blockCount];
    Block ring[blockCount] = {};
    for (unsigned int i = 0; i < blockCount; ++i) {
        start[i] = portable::load(words, i);
    }
    unsigned int head = 0;
    for (unsigned int j = p.degree; j-- > 0;) {
        ring[head] = nextBlock(ring, head);
        head = head + 1 == blockCount ? 0 : head + 1;
        if (bitAt(remainder, j)) {
            for (unsigned int i = 0; i < blockCount; ++i) {
                Block& target = ring[(head + i) % blockCount];
                target = target ^ start[i];
            }
        }
    }
    for (unsigned int i = 0; i < blockCount; ++i) {
        portable::store(words, i, ring[(head + i) % blockCount]);
    }
}

} // namespace

void jumpForward(std::uint32_t* words, unsigned long long passes)
{
    const Recurrence& p = recurrence();
    const BlockExponent exponent(passes);

    // x^N mod p, high bits first. While the power is below the degree it needs no reduction.
    int bit = 127;
    while (bit >= 0 && !exponent.bit(bit)) {
        --bit;
    }
    unsigned long long power = 0;
    for (; bit >= 0 && 2 * power + (exponent.bit(bit) ? 1 : 0) < p.degree; --bit) {
        power = 2 * power + (exponent.bit(bit) ? 1 : 0);
    }
    Word remainder[polyWords] = {};
    setBit(remainder, static_cast<unsigned int>(power));
    for (; bit >= 0; --bit) {
        squareModulo(remainder, p);
        if (exponent.bit(bit)) {
            timesXModulo(remainder, p);
        }
    }
    applyStepPolynomial(words, remainder, p);
}

void jumpBackward(std::uint32_t* words, unsigned long long passes)
{
    const Recurrence& p = recurrence();
    const BlockExponent exponent(passes);

    // x^-N mod p, high bits first, from 1.
    Word remainder[polyWords] = {};
    setBit(remainder, 0);
    for (int bit = 127; bit >= 0; --bit) {
        squareModulo(remainder, p);
        if (exponent.bit(bit)) {
            timesInverseXModulo(remainder, p);
        }
    }
    applyStepPolynomial(words, remainder, p);
}

} // namespace sfmt
} // namespace details
} // namespace utils
} // namespace orv
