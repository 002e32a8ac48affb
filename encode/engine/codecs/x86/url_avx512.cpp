// URL encoding and decoding with AVX-512 VBMI2.
// Encoding, 16 bytes a step: each byte laid out as '%' and two hex digits,
// and a compress keeps only the byte itself where it needs no escape.
// Decoding, 64 characters a step: every '%' followed by two hex digits
// takes the byte they spell, and a compress squeezes the digits out.
#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>

#include "codecs/url_escapes.h"
#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/hex_escapes_avx512.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

size_t UrlEncodeBytesAvx512(const uint8_t* in, size_t length, size_t room, char* out,
                            size_t* written) {
  const EscapeSet<kUrlWrittenAsIs> escapedOf;
  const EscapeLayout layOut('%');
  size_t at = 0, made = 0;
  while (length - at >= kEscapeStep && room - made >= kUrlEncodeStepRoom) {
    const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(kEscapeStep), in + at);
    const auto escaped = static_cast<uint32_t>(escapedOf(bytes) & 0xFFFF);
    const LaidOutEscapes laidOut = layOut(bytes, escaped);
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
