// Three bytes to four 6-bit values and back, 16 groups (48 bytes, 64
// values) per 512-bit step, for the codecs built on sextets (Base64 and
// uuencode); which characters the values are is each codec's own.
#pragma once

#include <immintrin.h>

#include <array>
#include <cstdint>

#include "codecs/x86/avx512_lanes.h"

namespace fe::codecs::x86 {

inline constexpr size_t kSextetStepGroups = 16;

using Table64 = std::array<uint8_t, 64>;

// Lane j takes group j as bytes b1 b0 b2 b1 (little-endian), which puts
// sextet 0 at bit 10, 1 at bit 4, 2 at bit 22 and 3 at bit 16.
inline constexpr Table64 kSextetSpread = [] {
  Table64 table{};
  for (int j = 0; j < 16; ++j) {
    const int b = 3 * j;
    table[4 * j] = static_cast<uint8_t>(b + 1);
    table[4 * j + 1] = static_cast<uint8_t>(b);
    table[4 * j + 2] = static_cast<uint8_t>(b + 2);
    table[4 * j + 3] = static_cast<uint8_t>(b + 1);
  }
  return table;
}();

inline constexpr uint64_t kSextetShifts = [] {
  constexpr uint64_t inLane[4] = {10, 4, 22, 16};
  uint64_t shifts = 0;
  for (int k = 0; k < 8; ++k)
    shifts |= (inLane[k % 4] + 32 * (k / 4)) << (8 * k);
  return shifts;
}();

// Joined lane j holds its group's 24 bits with the first byte highest.
inline constexpr Table64 kSextetPack = [] {
  Table64 table{};
  for (int k = 0; k < 48; ++k)
    table[k] = static_cast<uint8_t>(4 * (k / 3) + 2 - k % 3);
  return table;
}();

inline __m512i Load64(const uint8_t* bytes) {
  return _mm512_loadu_si512(bytes);
}

// The 64 characters of the 48 bytes in the low lanes, through a 64-entry
// alphabet.
class SextetEncoder {
 public:
  explicit SextetEncoder(const char* alphabet)
      : alphabet_(Load64(reinterpret_cast<const uint8_t*>(alphabet))) {}

  __m512i operator()(__m512i bytes) const {
    return Permute(MultiShift(shifts_, Permute(spread_, bytes)), alphabet_);
  }

 private:
  __m512i spread_ = Load64(kSextetSpread.data());
  __m512i shifts_ = _mm512_set1_epi64(static_cast<long long>(kSextetShifts));
  __m512i alphabet_;
};

// The 48 bytes of 16 groups of sextets (one value in each byte lane).
inline __m512i SextetBytes(__m512i sextets) {
  const __m512i pairs = _mm512_maddubs_epi16(sextets, _mm512_set1_epi32(0x01400140));
  const __m512i lanes = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
  return Permute(Load64(kSextetPack.data()), lanes);
}

}  // namespace fe::codecs::x86
