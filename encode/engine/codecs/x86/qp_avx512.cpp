// Quoted-printable with AVX-512 VBMI2.
// Encoding, 16 bytes a step: each byte is laid out three times, as the
// place of an '=' (or of the byte itself), of the high digit and of the low
// digit, and a compress keeps the places each byte needs; the one soft line
// break a step can hold splits the compress in two.
// Decoding, 64 characters a step: the masks of '=', hex digits and line
// ends show every escape and soft line break of the step at once; each
// escape's byte goes where its '=' stood and a compress squeezes out the
// digits and the soft breaks.
#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>

#include "codecs/codec_internal.h"
#include "codecs/qp_escapes.h"
#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/hex_escapes_avx512.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

size_t QpEncodeBytesAvx512(const uint8_t* in, size_t length, bool wrap, size_t room, char* out,
                           uint32_t* column, size_t* written) {
  const EscapeSet<kQpWrittenAsIs> escapedOf;
  const EscapeLayout layOut('=');
  size_t at = 0, made = 0;
  uint32_t lineColumn = *column;
  while (length - at >= kEscapeStep && room - made >= kQpEncodeStepRoom) {
    // The byte after the step decides whether its last blank is escaped.
    const __mmask64 present = FirstBytes(std::min(length - at, kEscapeStep + 1));
    const __m512i bytes = _mm512_maskz_loadu_epi8(present, in + at);
    const __mmask64 blanks = _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(' ')) |
                             _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8('\t'));
    const __mmask64 returns = _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8('\r')) & present;
    const __mmask64 listed = escapedOf(bytes);
    const auto escaped = static_cast<uint32_t>((listed | (blanks & (returns >> 1))) & 0xFFFF);

    const LaidOutEscapes laidOut = layOut(bytes, escaped);

    // Where the soft line break falls, if it does: before the byte that
    // finds the column past 72. After one, a step cannot reach 72 again.
    size_t breakBefore = kEscapeStep;
    for (size_t j = 0; j < kEscapeStep; ++j) {
      if (wrap && lineColumn > static_cast<uint32_t>(kLineLength) && breakBefore == kEscapeStep) {
        breakBefore = j;
        lineColumn = 0;
      }
      lineColumn += (escaped >> j) & 1 ? 3 : 1;
    }
    const __mmask64 first = laidOut.kept & FirstBytes(3 * breakBefore);
    const auto firstCount = static_cast<size_t>(std::popcount(first));
    _mm512_mask_storeu_epi8(out + made, FirstBytes(firstCount),
                            _mm512_maskz_compress_epi8(first, laidOut.places));
    made += firstCount;
    if (breakBefore < kEscapeStep) {
      const __mmask64 second = laidOut.kept & ~first;
      out[made] = '=';
      out[made + 1] = '\r';
      out[made + 2] = '\n';
      made += 3;
      const auto secondCount = static_cast<size_t>(std::popcount(second));
      _mm512_mask_storeu_epi8(out + made, FirstBytes(secondCount),
                              _mm512_maskz_compress_epi8(second, laidOut.places));
      made += secondCount;
    }
    at += kEscapeStep;
  }
  *column = lineColumn;
  *written = made;
  return at;
}

size_t QpDecodeTextAvx512(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                          size_t* written, size_t* lastEscape) {
  size_t at = 0, made = 0;
  *lastEscape = SIZE_MAX;
  while (at < length) {
    const size_t n = std::min<size_t>(64, length - at);
    const __mmask64 present = FirstBytes(n);
    const __m512i chars =
        n == 64 ? _mm512_loadu_si512(text + at) : _mm512_maskz_loadu_epi8(present, text + at);
    const __mmask64 equals = _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('=')) & present;
    const __m512i values = HexValuesOf(chars);
    const __mmask64 hex = ~_mm512_movepi8_mask(values) & present;
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
    const __m512i decoded = _mm512_mask_mov_epi8(chars, escapes, EscapedBytes(values));
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
