// Base32 with AVX-512 VBMI: 40 bytes to 64 characters and back per step.
// Each 64-bit lane holds one 5-byte group as a 40-bit number, first byte
// highest; a multishift cuts its eight 5-bit values out and a permute
// turns them into characters. Decoding looks every character up in a
// 128-entry table and joins the values with two multiply-adds and a shift.
// Masked loads and stores take exactly the groups asked for.
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

#include "codecs/base32_alphabet.h"
#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

constexpr size_t kStepGroups = 8;  // 40 bytes, 64 characters
constexpr uint8_t kOutside = 0x80;

// Lane g takes the bytes of group g in reverse, so that the group reads as
// one number; its three upper bytes are never looked at.
constexpr Table64 kGroupLanes = [] {
  Table64 table{};
  for (int g = 0; g < 8; ++g) {
    for (int k = 0; k < 5; ++k)
      table[8 * g + k] = static_cast<uint8_t>(5 * g + 4 - k);
  }
  return table;
}();

// Character k of a group is bits 35 - 5k upwards of its lane.
constexpr uint64_t kValueShifts = [] {
  uint64_t shifts = 0;
  for (int k = 0; k < 8; ++k)
    shifts |= uint64_t(35 - 5 * k) << (8 * k);
  return shifts;
}();

// The permute reads six bits of each index; the upper three of every
// value are junk, so the alphabet fills the table twice.
constexpr Table64 kCharacters = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i)
    table[i] = static_cast<uint8_t>(kBase32Alphabet[i % 32]);
  return table;
}();

// Values of the characters below 128 (kOutside for the rest), low and
// high halves.
template <int kHalf>
constexpr Table64 kValues = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i) {
    const uint8_t value = kBase32ValueOf[64 * kHalf + i];
    table[i] = value == kBase32NotInAlphabet ? kOutside : value;
  }
  return table;
}();

// Output byte 5g + k is byte 4 - k of lane g.
constexpr Table64 kBytesOfLanes = [] {
  Table64 table{};
  for (int i = 0; i < 40; ++i)
    table[i] = static_cast<uint8_t>(8 * (i / 5) + 4 - i % 5);
  return table;
}();

__m512i Load(const Table64& table) {
  return _mm512_loadu_si512(table.data());
}

}  // namespace

size_t Base32EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out) {
  const __m512i groupLanes = Load(kGroupLanes);
  const __m512i shifts = _mm512_set1_epi64(static_cast<long long>(kValueShifts));
  const __m512i characters = Load(kCharacters);
  for (size_t done = 0; done < groups; done += kStepGroups) {
    const size_t n = std::min(kStepGroups, groups - done);
    const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(5 * n), in + 5 * done);
    const __m512i values = MultiShift(shifts, Permute(groupLanes, bytes));
    _mm512_mask_storeu_epi8(out + 8 * done, FirstBytes(8 * n), Permute(values, characters));
  }
  return groups;
}

size_t Base32DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups,
                                uint8_t* out) {
  const __m512i low = Load(kValues<0>);
  const __m512i high = Load(kValues<1>);
  const __m512i bytesOfLanes = Load(kBytesOfLanes);
  const __m512i pairWeights = _mm512_set1_epi16(0x0120);      // 32 * first + second
  const __m512i quadWeights = _mm512_set1_epi32(0x00010400);  // 1024 * first + second
  const size_t most = std::min(maxGroups, length / 8);
  size_t done = 0;
  while (done < most) {
    size_t n = std::min(kStepGroups, most - done);
    const __m512i chars = _mm512_maskz_loadu_epi8(FirstBytes(8 * n), text + 8 * done);
    const __m512i values = _mm512_permutex2var_epi8(low, chars, high);
    // Characters at or above 128 have the top bit themselves.
    const __mmask64 outside =
        _mm512_movepi8_mask(_mm512_or_si512(values, chars)) & FirstBytes(8 * n);
    const bool stop = outside != 0;
    if (stop) n = static_cast<size_t>(std::countr_zero(outside)) / 8;
    // Lane g: its two 20-bit halves, then the 40-bit group.
    const __m512i halves =
        _mm512_madd_epi16(_mm512_maddubs_epi16(values, pairWeights), quadWeights);
    const __m512i group = _mm512_or_si512(_mm512_maskz_slli_epi64(kAllQwords, halves, 20),
                                          _mm512_maskz_srli_epi64(kAllQwords, halves, 32));
    _mm512_mask_storeu_epi8(out + 5 * done, FirstBytes(5 * n), Permute(bytesOfLanes, group));
    done += n;
    if (stop) break;
  }
  return done;
}

}  // namespace fe::codecs::x86
