// Base85 and Z85 with AVX-512 VBMI/VBMI2: eight groups (32 bytes, 40
// digits) a step, one group per 64-bit lane.
// Decoding: two multiply-adds join a group's digits 0-3 as one number and
// digit 4, and one multiply by 85 and an add (modulo 2^32, as the decoder
// wraps) give the group's value.
// Encoding: four divisions by 85, each a multiply by a reciprocal and a
// shift, split the value into digits; Base85's all-zero groups become 'z'
// and a compress squeezes out the four digits they no longer take.
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>

#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/kernels.h"
#include "codecs/z85_alphabet.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

constexpr size_t kStepGroups = 8;
constexpr uint8_t kFirstDigit = '!';
constexpr uint8_t kLastDigit = 'u';
constexpr uint8_t kOutside = 0x80;

// Bytes 0-4 of every lane: a group's five digits.
constexpr uint64_t kDigitLanes = 0x1F1F1F1F1F1F1F1Full;
// Bytes 0-3 of every lane: a group's value.
constexpr uint64_t kValueLanes = 0x0F0F0F0F0F0F0F0Full;

// Lane g takes the digits of group g in bytes 0-4.
constexpr Table64 kGroupDigits = [] {
  Table64 table{};
  for (int g = 0; g < 8; ++g) {
    for (int k = 0; k < 5; ++k)
      table[8 * g + k] = static_cast<uint8_t>(5 * g + k);
  }
  return table;
}();

// Output byte 5g + k is digit k of lane g.
constexpr Table64 kDigitsOfLanes = [] {
  Table64 table{};
  for (int i = 0; i < 40; ++i)
    table[i] = static_cast<uint8_t>(8 * (i / 5) + i % 5);
  return table;
}();

// Byte 4g + k of the groups is byte 3 - k of lane g, both ways (big-endian
// groups).
constexpr Table64 kBytesOfLanes = [] {
  Table64 table{};
  for (int i = 0; i < 32; ++i)
    table[i] = static_cast<uint8_t>(8 * (i / 4) + 3 - i % 4);
  return table;
}();
constexpr Table64 kLanesOfBytes = [] {
  Table64 table{};
  for (int g = 0; g < 8; ++g) {
    for (int k = 0; k < 4; ++k)
      table[8 * g + k] = static_cast<uint8_t>(4 * g + 3 - k);
  }
  return table;
}();

// Z85 characters of the digits 0-84, low and high halves.
template <int kHalf>
constexpr Table64 kZ85Characters = [] {
  Table64 table{};
  for (int i = 0; i < 64 && 64 * kHalf + i < 85; ++i)
    table[i] = static_cast<uint8_t>(kZ85Alphabet[64 * kHalf + i]);
  return table;
}();

// Z85 values of the characters below 128 (kOutside for the rest), low and
// high halves.
template <int kHalf>
constexpr Table64 kZ85Values = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i) {
    const uint8_t value = kZ85ValueOf[64 * kHalf + i];
    table[i] = value == kZ85NotInAlphabet ? kOutside : value;
  }
  return table;
}();

__m512i Load(const Table64& table) {
  return _mm512_loadu_si512(table.data());
}

// The digit values of Base85's characters; `outside` marks the rest.
struct Base85Digits {
  __m512i first = _mm512_set1_epi8(static_cast<char>(kFirstDigit));
  __m512i last = _mm512_set1_epi8(static_cast<char>(kLastDigit));

  __m512i operator()(__m512i chars, __mmask64* outside) const {
    *outside = ~(_mm512_cmpge_epu8_mask(chars, first) & _mm512_cmple_epu8_mask(chars, last));
    return _mm512_sub_epi8(chars, first);
  }
};

// The same for Z85: a 128-entry lookup; bytes from 128 up are outside too.
struct Z85Digits {
  __m512i low = Load(kZ85Values<0>);
  __m512i high = Load(kZ85Values<1>);

  __m512i operator()(__m512i chars, __mmask64* outside) const {
    const __m512i values = _mm512_permutex2var_epi8(low, chars, high);
    *outside = _mm512_movepi8_mask(_mm512_or_si512(chars, values));
    return values;
  }
};

template <typename Digits>
size_t DecodeGroups(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out,
                    const Digits& digitsOf) {
  const __m512i groupDigits = Load(kGroupDigits);
  const __m512i bytesOfLanes = Load(kBytesOfLanes);
  // Bytes 0-5 of a lane: 85, 1, 85, 1, 1, 0 (pairs d0 d1, d2 d3, d4).
  const __m512i pairWeights = _mm512_set1_epi64(0x0000000101550155);
  // Words 0-3 of a lane: 7225, 1, 1, 0 (d0-d3 as one number, then d4).
  const __m512i quadWeights = _mm512_set1_epi64(0x0000000100011C39);
  const size_t most = std::min(maxGroups, length / 5);
  size_t done = 0;
  while (done < most) {
    size_t n = std::min(kStepGroups, most - done);
    const __mmask64 taken = FirstBytes(5 * n);
    const __m512i chars = _mm512_maskz_loadu_epi8(taken, text + 5 * done);
    __mmask64 outside;
    const __m512i digits = digitsOf(chars, &outside);
    outside &= taken;
    const bool stop = outside != 0;
    if (stop) n = static_cast<size_t>(std::countr_zero(outside)) / 5;
    const __m512i values = _mm512_maskz_permutexvar_epi8(kDigitLanes, groupDigits, digits);
    const __m512i halves =
        _mm512_madd_epi16(_mm512_maddubs_epi16(values, pairWeights), quadWeights);
    const __m512i groups = _mm512_add_epi32(_mm512_mullo_epi32(halves, _mm512_set1_epi32(85)),
                                            _mm512_maskz_srli_epi64(kAllQwords, halves, 32));
    _mm512_mask_storeu_epi8(out + 4 * done, FirstBytes(4 * n), Permute(bytesOfLanes, groups));
    done += n;
    if (stop) break;
  }
  return done;
}

// The next digit down: value % 85 into `digit`, value / 85 returned.
// 0xC0C0C0C1 / 2^38 is 1/85 closely enough to be exact for every 32-bit
// value.
__m512i DivideBy85(__m512i value, __m512i* digit) {
  const __m512i quotient = _mm512_maskz_srli_epi64(
      kAllQwords, _mm512_maskz_mul_epu32(kAllQwords, value, _mm512_set1_epi64(0xC0C0C0C1)), 38);
  *digit =
      _mm512_sub_epi64(value, _mm512_maskz_mul_epu32(kAllQwords, quotient, _mm512_set1_epi64(85)));
  return quotient;
}

// The values of `n` groups from `in`, one per lane (the rest zero).
__m512i GroupValues(const uint8_t* in, size_t n, const __m512i& lanesOfBytes) {
  const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(4 * n), in);
  return _mm512_maskz_permutexvar_epi8(kValueLanes, lanesOfBytes, bytes);
}

// The digits 0-84 of each lane's value in its bytes 0-4, most significant
// first.
__m512i DigitsOf(__m512i values) {
  __m512i d1, d2, d3, d4;
  __m512i rest = DivideBy85(values, &d4);
  rest = DivideBy85(rest, &d3);
  rest = DivideBy85(rest, &d2);
  const __m512i d0 = DivideBy85(rest, &d1);  // below 85: 2^32 / 85^4 is 82.2
  const auto shifted = [](__m512i digit, int bits) {
    return _mm512_maskz_slli_epi64(kAllQwords, digit, bits);
  };
  return _mm512_or_si512(_mm512_or_si512(_mm512_or_si512(d0, shifted(d1, 8)),
                                         _mm512_or_si512(shifted(d2, 16), shifted(d3, 24))),
                         shifted(d4, 32));
}

}  // namespace

size_t Base85DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups,
                                uint8_t* out) {
  return DecodeGroups(text, length, maxGroups, out, Base85Digits{});
}

size_t Z85DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out) {
  return DecodeGroups(text, length, maxGroups, out, Z85Digits{});
}

size_t Base85EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out) {
  const __m512i lanesOfBytes = Load(kLanesOfBytes);
  const __m512i first = _mm512_set1_epi8(static_cast<char>(kFirstDigit));
  const __m512i zeroGroup = _mm512_set1_epi64('z');
  size_t written = 0;
  for (size_t done = 0; done < groups; done += kStepGroups) {
    const size_t n = std::min(kStepGroups, groups - done);
    const __m512i values = GroupValues(in + 4 * done, n, lanesOfBytes);
    const __m512i digits = DigitsOf(values);
    // Every character kept is nonzero: '!' and up, or the lone 'z'.
    const __m512i chars =
        _mm512_mask_blend_epi64(_mm512_cmpeq_epi64_mask(values, _mm512_setzero_si512()),
                                _mm512_maskz_add_epi8(kDigitLanes, digits, first), zeroGroup);
    const __mmask64 kept = _mm512_test_epi8_mask(chars, chars) & FirstBytes(8 * n);
    const auto count = static_cast<size_t>(std::popcount(kept));
    _mm512_mask_storeu_epi8(out + written, FirstBytes(count),
                            _mm512_maskz_compress_epi8(kept, chars));
    written += count;
  }
  return written;
}

void Z85EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out) {
  const __m512i lanesOfBytes = Load(kLanesOfBytes);
  const __m512i digitsOfLanes = Load(kDigitsOfLanes);
  const __m512i low = Load(kZ85Characters<0>);
  const __m512i high = Load(kZ85Characters<1>);
  for (size_t done = 0; done < groups; done += kStepGroups) {
    const size_t n = std::min(kStepGroups, groups - done);
    const __m512i digits =
        Permute(digitsOfLanes, DigitsOf(GroupValues(in + 4 * done, n, lanesOfBytes)));
    _mm512_mask_storeu_epi8(out + 5 * done, FirstBytes(5 * n),
                            _mm512_permutex2var_epi8(low, digits, high));
  }
}

}  // namespace fe::codecs::x86
