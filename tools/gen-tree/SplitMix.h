#pragma once

#include <cstdint>

// A small, fully specified random generator: the same seed gives the same trees on every
// platform and standard library, which std::uniform_int_distribution does not promise.
class SplitMix {
  public:
    explicit SplitMix(uint64_t nSeed) : m_nState(nSeed) {}

    uint64_t Next() {
        uint64_t z = (m_nState += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    // A number from 0 to nBound - 1; 0 for a bound of 0.
    uint32_t Below(uint32_t nBound) { return nBound ? static_cast<uint32_t>(Next() % nBound) : 0; }

    // True in nPercent cases out of 100.
    bool Chance(uint32_t nPercent) { return Below(100) < nPercent; }

  private:
    uint64_t m_nState;
};
