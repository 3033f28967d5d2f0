#ifndef ORV_UTILS_DETAILS_MURMURHASH_H
#define ORV_UTILS_DETAILS_MURMURHASH_H

#include <cstdint>

#if defined(__SSE2__) && defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace orv {
namespace utils {
namespace details {

/// A 32-bit word stored little-endian at `bytes`, whatever the byte order of the host. Compilers
/// turn the composition into a single load on little-endian machines.
inline std::uint32_t readLittleEndian32(const unsigned char* bytes)
{
    return static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
           (static_cast<std::uint32_t>(bytes[2]) << 16) | (static_cast<std::uint32_t>(bytes[3]) << 24);
}

#if defined(__SSE2__) && defined(__x86_64__)
/// Four 32-bit products modulo 2^32 with SSE2 alone, which multiplies only two lanes at a time.
inline __m128i multiplyWords(__m128i words, __m128i multiplier)
{
    const __m128i even = _mm_mul_epu32(words, multiplier);
    const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(words, 32), multiplier);
    return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                              _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
}
#endif

/// MurmurHash64B: the 64-bit variant of MurmurHash2 that runs two 32-bit lanes, so that it is as
/// fast on 32-bit machines as on 64-bit ones. The low word of `seed` starts the first lane and
/// its high word the second. Hashes are stored in serialized objects, so the result must not
/// depend on the host: words are read little-endian and all arithmetic is modulo 2^32.
inline unsigned long long murmurHash64B(const void* data, unsigned int length, unsigned long long seed)
{
    constexpr std::uint32_t m = 0x5bd1e995u;
    constexpr int r = 24;

    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    std::uint32_t h1 = static_cast<std::uint32_t>(seed) ^ length;
    std::uint32_t h2 = static_cast<std::uint32_t>(seed >> 32);

#if defined(__SSE2__) && defined(__x86_64__)
    // The words mix independently of each other, so four of them mix at once in vector lanes and
    // the scalar multiplier is left with the two lane chains. x86-64 is little-endian: a vector
    // load reads the words as defined.
    if (length >= 16) {
        const __m128i multiplier = _mm_set1_epi32(static_cast<int>(m));
        do {
            __m128i k = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
            k = multiplyWords(k, multiplier);
            k = _mm_xor_si128(k, _mm_srli_epi32(k, r));
            k = multiplyWords(k, multiplier);
            const std::uint64_t low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(k));
            const std::uint64_t high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(k, k)));
            h1 = h1 * m ^ static_cast<std::uint32_t>(low);
            h2 = h2 * m ^ static_cast<std::uint32_t>(low >> 32);
            h1 = h1 * m ^ static_cast<std::uint32_t>(high);
            h2 = h2 * m ^ static_cast<std::uint32_t>(high >> 32);
            bytes += 16;
            length -= 16;
        } while (length >= 16);
    }
#endif

    while (length >= 8) {
        std::uint32_t k1 = readLittleEndian32(bytes);
        k1 *= m;
        k1 ^= k1 >> r;
        k1 *= m;
        h1 *= m;
        h1 ^= k1;

        std::uint32_t k2 = readLittleEndian32(bytes + 4);
        k2 *= m;
        k2 ^= k2 >> r;
        k2 *= m;
        h2 *= m;
        h2 ^= k2;

        bytes += 8;
        length -= 8;
    }

    if (length >= 4) {
        std::uint32_t k1 = readLittleEndian32(bytes);
        k1 *= m;
        k1 ^= k1 >> r;
        k1 *= m;
        h1 *= m;
        h1 ^= k1;
        bytes += 4;
        length -= 4;
    }

    // With no tail left the second lane is not multiplied either.
    switch (length) {
    case 3:
        h2 ^= static_cast<std::uint32_t>(bytes[2]) << 16;
        [[fallthrough]];
    case 2:
        h2 ^= static_cast<std::uint32_t>(bytes[1]) << 8;
        [[fallthrough]];
    case 1:
        h2 ^= bytes[0];
        h2 *= m;
        break;
    default:
        break;
    }

    h1 ^= h2 >> 18;
    h1 *= m;
    h2 ^= h1 >> 22;
    h2 *= m;
    h1 ^= h2 >> 17;
    h1 *= m;
    h2 ^= h1 >> 19;
    h2 *= m;

    return (static_cast<unsigned long long>(h1) << 32) | h2;
}

} // namespace details
} // namespace utils
} // namespace orv

#endif
