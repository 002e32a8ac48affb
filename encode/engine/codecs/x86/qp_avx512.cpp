// Quoted-printable with AVX-512 VBMI2.
// Encoding, 16 bytes a step: each byte is laid out three times, as the
// place of an '=' (or of the byte itself), of the high digit and of the low
// digit, and a compress keeps the places each byte needs; the one soft line
// break a step can hold splits the compress in two. The file form's pieces
// are one step each.
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

namespace {

static_assert(kQpFilePiece == kEscapeStep, "a file piece is one step");

// The bytes of a step that are escaped: the listed ones, and blanks before
// a CR among the `present` bytes (the step's and the one after it, if any).
uint32_t EscapedInStep(const EscapeSet<kQpWrittenAsIs>& escapedOf, __m512i bytes,
                       __mmask64 present) {
  const __mmask64 blanks = _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(' ')) |
                           _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8('\t'));
  const __mmask64 returns = _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8('\r')) & present;
  return static_cast<uint32_t>((escapedOf(bytes) | (blanks & (returns >> 1))) & 0xFFFF);
}

// Stores the `chosen` places at `out`; returns how many.
size_t StorePlaces(char* out, __mmask64 chosen, __m512i places) {
  const auto count = static_cast<size_t>(std::popcount(chosen));
  _mm512_mask_storeu_epi8(out, FirstBytes(count), _mm512_maskz_compress_epi8(chosen, places));
  return count;
}

}  // namespace

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
    const uint32_t escaped = EscapedInStep(escapedOf, bytes, present);
    const LaidOutEscapes laidOut = layOut(bytes, escaped);

    // Where the soft line break falls, if it does: before the byte that
    // finds the column past 72. After one, a step cannot reach 72 again.
    // A step whose last byte cannot find it there (three places a byte at
    // most) has none.
    size_t breakBefore = kEscapeStep;
    if (wrap && lineColumn + 3 * (kEscapeStep - 1) > static_cast<uint32_t>(kLineLength)) {
      for (size_t j = 0; j < kEscapeStep; ++j) {
        if (lineColumn > static_cast<uint32_t>(kLineLength) && breakBefore == kEscapeStep) {
          breakBefore = j;
          lineColumn = 0;
        }
        lineColumn += (escaped >> j) & 1 ? 3 : 1;
      }
    } else {
      lineColumn += static_cast<uint32_t>(kEscapeStep + 2 * std::popcount(escaped));
    }
    const __mmask64 first = laidOut.kept & FirstBytes(3 * breakBefore);
    made += StorePlaces(out + made, first, laidOut.places);
    if (breakBefore < kEscapeStep) {
      out[made] = '=';
      out[made + 1] = '\r';
      out[made + 2] = '\n';
      made += 3;
      made += StorePlaces(out + made, laidOut.kept & ~first, laidOut.places);
    }
    at += kEscapeStep;
  }
  *column = lineColumn;
  *written = made;
  return at;
}

size_t QpEncodePiecesAvx512(const uint8_t* in, size_t pieces, char* out) {
  const EscapeSet<kQpWrittenAsIs> escapedOf;
  const EscapeLayout layOut('=');
  const __mmask64 present = FirstBytes(kQpFilePiece);  // nothing follows a piece
  size_t made = 0;
  for (size_t piece = 0; piece < pieces; ++piece) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(present, in + piece * kQpFilePiece);
    const LaidOutEscapes laidOut = layOut(bytes, EscapedInStep(escapedOf, bytes, present));
    made += StorePlaces(out + made, laidOut.kept, laidOut.places);
  }
  return made;
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
