// The hex-escape steps that quoted-printable and URL encoding share
// (AVX-512 VBMI/VBMI2): escaping lays 16 bytes out three times each, and
// unescaping reads the byte each escape's two digits spell.
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "codecs/hex_digits.h"
#include "codecs/x86/avx512_lanes.h"

namespace fe::codecs::x86 {

inline constexpr size_t kEscapeStep = 16;  // bytes laid out at once, 48 places

namespace hex_escapes {

using Table = std::array<uint8_t, 64>;

// Place p holds byte p / 3 of the step.
inline constexpr Table kPlaces = [] {
  Table table{};
  for (int p = 0; p < 64; ++p)
    table[p] = static_cast<uint8_t>(std::min(p / 3, 15));
  return table;
}();

// The places of kind k (0 the escape character or the byte, 1 the high
// digit, 2 the low).
template <int kKind>
inline constexpr uint64_t kPlacesOfKind = [] {
  uint64_t mask = 0;
  for (int p = kKind; p < 48; p += 3)
    mask |= uint64_t{1} << p;
  return mask;
}();

inline constexpr Table kHexCharacters = [] {
  Table table{};
  for (int i = 0; i < 64; ++i)
    table[i] = static_cast<uint8_t>(kUpperHexDigits[i % 16]);
  return table;
}();

// Hex values of the characters below 128 (0x80 for the rest), low and high
// halves.
template <int kHalf>
inline constexpr Table kHexValues = [] {
  Table table{};
  for (int i = 0; i < 64; ++i) {
    const uint8_t value = kHexValue[64 * kHalf + i];
    table[i] = value == kNotHex ? 0x80 : value;
  }
  return table;
}();

// Lane i takes lane i + kAhead (wrapping; the wrapped lanes are never used).
template <int kAhead>
inline constexpr Table kLanesAhead = [] {
  Table table{};
  for (int i = 0; i < 64; ++i)
    table[i] = static_cast<uint8_t>((i + kAhead) % 64);
  return table;
}();

inline __m512i Load(const Table& table) {
  return _mm512_loadu_si512(table.data());
}

// 0x80 for the bytes below 128 that a codec escapes, low and high halves.
template <const std::array<bool, 256>& kWrittenAsIs, int kHalf>
inline constexpr Table kEscaped = [] {
  Table table{};
  for (int i = 0; i < 64; ++i)
    table[i] = kWrittenAsIs[64 * kHalf + i] ? 0 : 0x80;
  return table;
}();

}  // namespace hex_escapes

// Which bytes a codec escapes, by the table of those it writes as they
// are; both codecs escape every byte from 128 up. Built once before a
// loop.
template <const std::array<bool, 256>& kWrittenAsIs>
class EscapeSet {
 public:
  __mmask64 operator()(__m512i bytes) const {
    return _mm512_movepi8_mask(
        _mm512_or_si512(_mm512_permutex2var_epi8(low_, bytes, high_), bytes));
  }

 private:
  __m512i low_ = hex_escapes::Load(hex_escapes::kEscaped<kWrittenAsIs, 0>);
  __m512i high_ = hex_escapes::Load(hex_escapes::kEscaped<kWrittenAsIs, 1>);
};

struct LaidOutEscapes {
  __m512i places;  // three places a byte
  __mmask64 kept;  // the places the bytes need
};

// Lays out the first 16 of `bytes` three places each: those whose bit is
// set in `escaped` as `escape` and two upper-case hex digits, the rest as
// themselves alone. Built once before a loop, so the tables stay loaded.
class EscapeLayout {
 public:
  explicit EscapeLayout(char escape) : escape_(_mm512_set1_epi8(escape)) {}

  LaidOutEscapes operator()(__m512i bytes, uint32_t escaped) const {
    using hex_escapes::kPlacesOfKind;
    const __m512i spread = Permute(places_, bytes);
    const __m512i high =
        Permute(_mm512_and_si512(_mm512_maskz_srli_epi16(kAllWords, spread, 4), lowNibble_), hex_);
    const __m512i low = Permute(_mm512_and_si512(spread, lowNibble_), hex_);
    const __mmask64 escapedPlaces =
        _mm512_movepi8_mask(Permute(places_, _mm512_movm_epi8(escaped))) & FirstBytes(48);
    __m512i laidOut = _mm512_mask_mov_epi8(spread, kPlacesOfKind<1>, high);
    laidOut = _mm512_mask_mov_epi8(laidOut, kPlacesOfKind<2>, low);
    laidOut = _mm512_mask_mov_epi8(laidOut, kPlacesOfKind<0> & escapedPlaces, escape_);
    return {laidOut, kPlacesOfKind<0> | (escapedPlaces & (kPlacesOfKind<1> | kPlacesOfKind<2>))};
  }

 private:
  __m512i places_ = hex_escapes::Load(hex_escapes::kPlaces);
  __m512i hex_ = hex_escapes::Load(hex_escapes::kHexCharacters);
  __m512i lowNibble_ = _mm512_set1_epi8(15);
  __m512i escape_;
};

// The hex values of `chars`; every character that is no hex digit
// (including those from 128 up) has the top bit.
inline __m512i HexValuesOf(__m512i chars) {
  using namespace hex_escapes;
  return _mm512_or_si512(_mm512_permutex2var_epi8(Load(kHexValues<0>), chars, Load(kHexValues<1>)),
                         _mm512_and_si512(chars, _mm512_set1_epi8(static_cast<char>(0x80))));
}

// In lane i, the byte the digits in lanes i + 1 and i + 2 spell (junk
// where they are no digits).
inline __m512i EscapedBytes(__m512i values) {
  using namespace hex_escapes;
  const __m512i lowNibble = _mm512_set1_epi8(15);
  const __m512i high = _mm512_and_si512(Permute(Load(kLanesAhead<1>), values), lowNibble);
  const __m512i low = _mm512_and_si512(Permute(Load(kLanesAhead<2>), values), lowNibble);
  return _mm512_or_si512(_mm512_maskz_slli_epi16(kAllWords, high, 4), low);
}

}  // namespace fe::codecs::x86
