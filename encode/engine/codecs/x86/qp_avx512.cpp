// Quoted-printable decoding with AVX-512 VBMI2, 64 characters a step: the
// masks of '=', hex digits and line ends show every escape and soft line
// break of the step at once; each escape's byte goes where its '=' stood
// and a compress squeezes out the digits and the soft breaks.
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "codecs/hex_digits.h"
#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

// Hex values of the characters below 128 (0x80 for the rest), low and high
// halves.
template <int kHalf>
constexpr Table64 kHexDigits = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i) {
    const uint8_t value = kHexValue[64 * kHalf + i];
    table[i] = value == kNotHex ? 0x80 : value;
  }
  return table;
}();

// Lane i takes lane i + kAhead (wrapping; the wrapped lanes are never used).
template <int kAhead>
constexpr Table64 kLanesAhead = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i)
    table[i] = static_cast<uint8_t>((i + kAhead) % 64);
  return table;
}();

__m512i Load(const Table64& table) {
  return _mm512_loadu_si512(table.data());
}

}  // namespace

size_t QpDecodeTextAvx512(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                          size_t* written, size_t* lastEscape) {
  const __m512i hexLow = Load(kHexDigits<0>);
  const __m512i hexHigh = Load(kHexDigits<1>);
  const __m512i ahead1 = Load(kLanesAhead<1>);
  const __m512i ahead2 = Load(kLanesAhead<2>);
  const __m512i lowNibble = _mm512_set1_epi8(15);
  size_t at = 0, made = 0;
  *lastEscape = SIZE_MAX;
  while (at < length) {
    const size_t n = std::min<size_t>(64, length - at);
    const __mmask64 present = FirstBytes(n);
    const __m512i chars =
        n == 64 ? _mm512_loadu_si512(text + at) : _mm512_maskz_loadu_epi8(present, text + at);
    const __mmask64 equals = _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('=')) & present;
    const __m512i values = _mm512_permutex2var_epi8(hexLow, chars, hexHigh);
    // Characters from 0x80 up have the top bit themselves.
    const __mmask64 hex = ~_mm512_movepi8_mask(_mm512_or_si512(values, chars)) & present;
    const __mmask64 lineEnds = (_mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('\r')) |
                                _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('\n'))) &
                               present;
    __mmask64 escapes = equals & (hex >> 1) & (hex >> 2);
    // The character after the line end must be here and must not be an
    // '=', which the break would swallow.
    __mmask64 breaks = equals & (lineEnds >> 1) & (present >> 2) & ~(equals >> 2);
    const __mmask64 others = equals & ~(escapes | breaks);
    const size_t taken = others != 0 ? static_cast<size_t>(std::countr_zero(others)) : n;
    escapes &= FirstBytes(taken);
    breaks &= FirstBytes(taken);
    const __mmask64 kept =
        FirstBytes(taken) & ~(breaks | ((escapes | breaks) << 1) | ((escapes | breaks) << 2));
    const auto count = static_cast<size_t>(std::popcount(kept));
    if (made + count >= room) break;
    const __m512i high = _mm512_and_si512(Permute(ahead1, values), lowNibble);
    const __m512i low = _mm512_and_si512(Permute(ahead2, values), lowNibble);
    const __m512i bytes = _mm512_or_si512(_mm512_maskz_slli_epi16(kAllWords, high, 4), low);
    const __m512i decoded = _mm512_mask_mov_epi8(chars, escapes, bytes);
    _mm512_mask_storeu_epi8(out + made, FirstBytes(count),
                            _mm512_maskz_compress_epi8(kept, decoded));
    if (escapes != 0) *lastEscape = at + 63 - static_cast<size_t>(std::countl_zero(escapes));
    made += count;
    at += taken;
    if (taken < 64) break;
  }
  *written = made;
  return at;
}

}  // namespace fe::codecs::x86
