// URL encoding and decoding with AVX-512 VBMI2.
// Encoding, 16 bytes a step: each byte laid out as '%' and two hex digits,
// and a compress keeps only the byte itself where it needs no escape.
// Decoding, 64 characters a step: every '%' followed by two hex digits
// takes the byte they spell, and a compress squeezes the digits out.
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "codecs/url_escapes.h"
#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/hex_escapes_avx512.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

// 0x80 for the bytes below 128 that are escaped; every byte from 128 up is.
template <int kHalf>
constexpr Table64 kEscaped = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i)
    table[i] = kUrlWrittenAsIs[64 * kHalf + i] ? 0 : 0x80;
  return table;
}();

__m512i Load(const Table64& table) {
  return _mm512_loadu_si512(table.data());
}

}  // namespace

size_t UrlEncodeBytesAvx512(const uint8_t* in, size_t length, size_t room, char* out,
                            size_t* written) {
  const __m512i escapedLow = Load(kEscaped<0>);
  const __m512i escapedHigh = Load(kEscaped<1>);
  const EscapeLayout layOut('%');
  size_t at = 0, made = 0;
  while (length - at >= kEscapeStep && room - made >= kUrlEncodeStepRoom) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(kEscapeStep), in + at);
    const auto escaped = static_cast<uint32_t>(_mm512_movepi8_mask(
        _mm512_or_si512(_mm512_permutex2var_epi8(escapedLow, bytes, escapedHigh), bytes)));
    const LaidOutEscapes laidOut = layOut(bytes, escaped & 0xFFFF);
    const auto count = static_cast<size_t>(std::popcount(laidOut.kept));
    _mm512_mask_storeu_epi8(out + made, FirstBytes(count),
                            _mm512_maskz_compress_epi8(laidOut.kept, laidOut.places));
    made += count;
    at += kEscapeStep;
  }
  *written = made;
  return at;
}

size_t UrlDecodeTextAvx512(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                           size_t* written) {
  size_t at = 0, made = 0;
  while (at < length && room - made >= kUrlDecodeStepRoom) {
    const size_t n = std::min<size_t>(64, length - at);
    const __mmask64 present = FirstBytes(n);
    const __m512i chars = _mm512_maskz_loadu_epi8(present, text + at);
    const __mmask64 percents = _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('%')) & present;
    const __m512i values = HexValuesOf(chars);
    const __mmask64 hex = ~_mm512_movepi8_mask(values) & present;
    __mmask64 escapes = percents & (hex >> 1) & (hex >> 2);
    // A '%' whose digits would be past the step is left for the next one,
    // unless the text ends there and it is plain.
    __mmask64 stops = _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('+')) & present;
    if (n == 64) stops |= percents & ~escapes & ~FirstBytes(62);
    const size_t taken = stops != 0 ? static_cast<size_t>(std::countr_zero(stops)) : n;
    escapes &= FirstBytes(taken);
    const __mmask64 kept = FirstBytes(taken) & ~((escapes << 1) | (escapes << 2));
    const auto count = static_cast<size_t>(std::popcount(kept));
    const __m512i decoded = _mm512_mask_mov_epi8(chars, escapes, EscapedBytes(values));
    _mm512_mask_storeu_epi8(out + made, FirstBytes(count),
                            _mm512_maskz_compress_epi8(kept, decoded));
    made += count;
    at += taken;
    if (taken < 64) break;
  }
  *written = made;
  return at;
}

}  // namespace fe::codecs::x86
