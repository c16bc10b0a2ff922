// Random numbers as a pure function of pixel, sample, dimension and seed.
#pragma once

#include "renderer/vec.h"

#include <cstdint>

namespace renderer {

/// Bits of a 32-bit word in reverse order.
inline std::uint32_t reverse_bits(std::uint32_t x) {
    x = __builtin_bswap32(x);
    x = ((x & 0x0f0f0f0fu) << 4) | ((x >> 4) & 0x0f0f0f0fu);
    x = ((x & 0x33333333u) << 2) | ((x >> 2) & 0x33333333u);
    return ((x & 0x55555555u) << 1) | ((x >> 1) & 0x55555555u);
}

/// A well-mixed hash of one word (the "lowbias32" function of C. Wellons' hash prospector).
inline std::uint32_t hash_word(std::uint32_t x) {
    x = (x ^ (x >> 16)) * 0x21f0aaadu;
    x = (x ^ (x >> 15)) * 0xd35a2d97u;
    return x ^ (x >> 15);
}

inline std::uint32_t hash_combine(std::uint32_t a, std::uint32_t b) {
    return hash_word(a ^ (hash_word(b) + 0x9e3779b9u + (a << 6) + (a >> 2)));
}

/// Owen scrambling of a word whose bits stand in reverse order: a bit is changed only by bits
/// below it. After B. Burley, "Practical Hash-based Owen Scrambling", JCGT 9(4), 2020, with the
/// better mixing constants of N. Vegdahl (2021).
inline std::uint32_t scramble_reversed(std::uint32_t x, std::uint32_t seed) {
    x ^= x * 0x3d20adeau;
    x += seed;
    x *= (seed >> 16) | 1u;
    x ^= x * 0x05526c56u;
    x ^= x * 0x53a22864u;
    return x;
}

/// Second dimension of the Sobol sequence before the final bit reversal: the Pascal matrix
/// modulo 2 applied to the index.
inline std::uint32_t pascal_transform(std::uint32_t x) {
    x ^= (x >> 1) & 0x55555555u;
    x ^= (x >> 2) & 0x33333333u;
    x ^= (x >> 4) & 0x0f0f0f0fu;
    x ^= (x >> 8) & 0x00ff00ffu;
    x ^= (x >> 16) & 0x0000ffffu;
    return x;
}

inline float to_unit_float(std::uint32_t x) { return static_cast<float>(x >> 8) * 0x1p-24f; }

/// The numbers of one path: padded pairs of the first two Sobol dimensions, each pair with its
/// own shuffled order and Owen scrambling. All values lie in [0, 1). The same arguments give the
/// same numbers whatever was asked before.
class Sampler {
public:
    Sampler(std::uint32_t x, std::uint32_t y, std::uint32_t sample, std::uint32_t seed)
      : pixel_hash_(hash_combine(hash_combine(hash_word(seed + 0x51633e2du), x), y))
      , reversed_index_(reverse_bits(sample)) {}

    /// Goes to a pair by number, so that the decisions of one bounce do not shift the next.
    void set_dimension(std::uint32_t pair) { pair_ = pair; }

    Vec2 next_2d() {
        const std::uint32_t h = hash_combine(pixel_hash_, pair_++);
        const std::uint32_t index = reverse_bits(scramble_reversed(reversed_index_, h));
        const std::uint32_t a = reverse_bits(scramble_reversed(index, hash_word(h ^ 0x68bc21ebu)));
        const std::uint32_t b =
            reverse_bits(scramble_reversed(pascal_transform(index), hash_word(h ^ 0x02e5be93u)));
        return {to_unit_float(a), to_unit_float(b)};
    }
    float next_1d() { return next_2d().x; }

private:
    std::uint32_t pixel_hash_;
    std::uint32_t reversed_index_;
    std::uint32_t pair_ = 0;
};

} // namespace renderer
