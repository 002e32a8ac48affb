// Base85 decoding with AVX-512 VBMI: eight groups (40 digits) a step. Each
// group's five digits go to a 64-bit lane; two multiply-adds join them
// into digits 0-3 as one number and digit 4, and one multiply by 85 and an
// add (modulo 2^32, as the decoder wraps) give the group's value.
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

constexpr size_t kStepGroups = 8;  // 40 digits, 32 bytes
constexpr uint8_t kFirstDigit = '!';
constexpr uint8_t kLastDigit = 'u';

// Lane g takes the digits of group g in bytes 0-4; bytes 5-7 are cleared.
constexpr Table64 kGroupDigits = [] {
  Table64 table{};
  for (int g = 0; g < 8; ++g) {
    for (int k = 0; k < 5; ++k)
      table[8 * g + k] = static_cast<uint8_t>(5 * g + k);
  }
  return table;
}();

constexpr uint64_t kDigitLanes = 0x1F1F1F1F1F1F1F1Full;

// Output byte 4g + k is byte 3 - k of lane g (big-endian groups).
constexpr Table64 kBytesOfLanes = [] {
  Table64 table{};
  for (int i = 0; i < 32; ++i)
    table[i] = static_cast<uint8_t>(8 * (i / 4) + 3 - i % 4);
  return table;
}();

__m512i Load(const Table64& table) {
  return _mm512_loadu_si512(table.data());
}

}  // namespace

size_t Base85DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups,
                                uint8_t* out) {
  const __m512i groupDigits = Load(kGroupDigits);
  const __m512i bytesOfLanes = Load(kBytesOfLanes);
  // Bytes 0-5 of a lane: 85, 1, 85, 1, 1, 0 (pairs d0 d1, d2 d3, d4).
  const __m512i pairWeights = _mm512_set1_epi64(0x0000000101550155);
  // Words 0-3 of a lane: 7225, 1, 1, 0 (d0-d3 as one number, then d4).
  const __m512i quadWeights = _mm512_set1_epi64(0x0000000100011C39);
  const __m512i first = _mm512_set1_epi8(static_cast<char>(kFirstDigit));
  const size_t most = std::min(maxGroups, length / 5);
  size_t done = 0;
  while (done < most) {
    size_t n = std::min(kStepGroups, most - done);
    const __mmask64 taken = FirstBytes(5 * n);
    const __m512i chars = _mm512_maskz_loadu_epi8(taken, text + 5 * done);
    const __mmask64 digits = _mm512_cmpge_epu8_mask(chars, first) &
                             _mm512_cmple_epu8_mask(chars, _mm512_set1_epi8(kLastDigit));
    const __mmask64 others = taken & ~digits;
    const bool stop = others != 0;
    if (stop) n = static_cast<size_t>(std::countr_zero(others)) / 5;
    const __m512i values =
        _mm512_maskz_permutexvar_epi8(kDigitLanes, groupDigits, _mm512_sub_epi8(chars, first));
    const __m512i halves =
        _mm512_madd_epi16(_mm512_maddubs_epi16(values, pairWeights), quadWeights);
    const __m512i groups = _mm512_add_epi32(_mm512_mullo_epi32(halves, _mm512_set1_epi32(85)),
                                            _mm512_maskz_srli_epi64(0xFF, halves, 32));
    _mm512_mask_storeu_epi8(out + 4 * done, FirstBytes(4 * n), Permute(bytesOfLanes, groups));
    done += n;
    if (stop) break;
  }
  return done;
}

}  // namespace fe::codecs::x86
