// A small random generator of fixed sequence, so that the drawings are the same on every run.
#pragma once

#include <cstdint>

namespace make_samples {

/// SplitMix64 (Steele, Lea, Flood 2014): 64 bits of state, one multiply-mix a number.
class Random {
public:
    explicit Random(std::uint64_t seed)
      : state_(seed) {}
    std::uint64_t next() {
        state_ += 0x9e3779b97f4a7c15ULL;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    /// Even over [low, high).
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(next() >> 11) * 0x1.0p-53);
    }
    /// 0 to count - 1.
    int below(int count) { return static_cast<int>(next() % static_cast<std::uint64_t>(count)); }
    bool chance(double probability) { return real(0, 1) < probability; }

private:
    std::uint64_t state_;
};

} // namespace make_samples
