// yEnc with AVX-512 VBMI2: 64 bytes per step.
// Encoding lays each half of a step out as 32 pairs of places, an '=' and
// the character, and squeezes out the '=' of every pair that is not an
// escape; the places where characters end show where the line breaks.
// Decoding squeezes the escapes and line ends out of each 64 characters
// and lowers the character after every escape by 64 more.
#include <immintrin.h>

#include <algorithm>
#include <array>

#include "codecs/x86/avx512_lanes.h"
#include "codecs/x86/kernels.h"
#include "codecs/yenc_body.h"

namespace fe::codecs::x86 {

namespace {

using Table64 = std::array<uint8_t, 64>;

constexpr uint64_t kEvenPlaces = 0x5555555555555555ull;
constexpr uint64_t kOddPlaces = 0xAAAAAAAAAAAAAAAAull;

// Lanes 0-63 of a 64-entry table: which raised values below 64 are
// critical; none above is.
constexpr Table64 kCriticalBelow64 = [] {
  Table64 table{};
  for (int c = 0; c < 64; ++c)
    table[c] = IsYencCritical(static_cast<uint8_t>(c)) ? 0xFF : 0;
  return table;
}();

// Place 2j and 2j + 1 both take byte j of the half (plus 32 for the upper).
template <int kHalf>
constexpr Table64 kPairs = [] {
  Table64 table{};
  for (int j = 0; j < 64; ++j)
    table[j] = static_cast<uint8_t>(32 * kHalf + j / 2);
  return table;
}();

__m512i Load64(const void* bytes) {
  return _mm512_loadu_si512(bytes);
}

// The escape flags of 32 bytes moved to the even places of their pairs.
uint64_t SpreadToEvenPlaces(uint32_t escapes) {
#ifdef __x86_64__
  return _pdep_u64(escapes, kEvenPlaces);
#else
  const uint32_t even = static_cast<uint32_t>(kEvenPlaces);
  return _pdep_u32(escapes & 0xFFFF, even) | uint64_t{_pdep_u32(escapes >> 16, even)} << 32;
#endif
}

// Of the places kept, the ones holding a byte's last character.
uint64_t CharacterEnds(uint64_t present) {
#ifdef __x86_64__
  return _pext_u64(kOddPlaces, present);
#else
  const uint32_t odd = static_cast<uint32_t>(kOddPlaces);
  const auto low = static_cast<uint32_t>(present);
  return _pext_u32(odd, low) | uint64_t{_pext_u32(odd, static_cast<uint32_t>(present >> 32))}
                                   << __builtin_popcount(low);
#endif
}

// Writes one half's pairs (the escape flags of its 32 bytes in `escapes`)
// after the line's `*used` characters, with the CR LF where the line
// reaches 128; returns how far `out` moved.
size_t PutHalf(__m512i pairs, uint32_t escapes, char* out, size_t* used) {
  const uint64_t present = SpreadToEvenPlaces(escapes) | kOddPlaces;
  const __m512i characters = _mm512_maskz_compress_epi8(present, pairs);
  const auto count = static_cast<size_t>(32 + __builtin_popcount(escapes));
  if (*used + count < kYencLineLength) {
    _mm512_storeu_si512(out, characters);
    *used += count;
    return count;
  }
  // The line ends after the first character that completes a byte at or
  // beyond its 128th place; the rest starts the next line.
  const uint64_t ends = CharacterEnds(present);
  const size_t need = kYencLineLength - *used - 1;
  const size_t last = need + static_cast<size_t>(__builtin_ctzll(ends >> need));
  _mm512_storeu_si512(out + 2, characters);
  _mm512_mask_storeu_epi8(out, FirstBytes(last + 1), characters);
  out[last + 1] = '\r';
  out[last + 2] = '\n';
  *used = count - (last + 1);
  return count + 2;
}

}  // namespace

size_t YencEncodeBlocksAvx512(const uint8_t* in, size_t length, char* out, size_t* lineUsed,
                              size_t* written) {
  const __m512i critical = Load64(kCriticalBelow64.data());
  const __m512i lowPairs = Load64(kPairs<0>.data());
  const __m512i highPairs = Load64(kPairs<1>.data());
  const __m512i escape = _mm512_set1_epi8('=');
  size_t used = *lineUsed, made = 0, at = 0;
  for (; at + 64 <= length; at += 64) {
    const __m512i raised = _mm512_add_epi8(Load64(in + at), _mm512_set1_epi8(42));
    const __m512i looked = Permute(raised, critical);
    const __mmask64 escapes = _mm512_cmplt_epu8_mask(raised, _mm512_set1_epi8(64)) &
                              _mm512_test_epi8_mask(looked, looked);
    const __m512i characters = _mm512_mask_add_epi8(raised, escapes, raised, _mm512_set1_epi8(64));
    const __m512i low = _mm512_mask_permutexvar_epi8(escape, kOddPlaces, lowPairs, characters);
    const __m512i high = _mm512_mask_permutexvar_epi8(escape, kOddPlaces, highPairs, characters);
    made += PutHalf(low, static_cast<uint32_t>(escapes), out + made, &used);
    made += PutHalf(high, static_cast<uint32_t>(escapes >> 32), out + made, &used);
  }
  *lineUsed = used;
  *written = made;
  return at;
}

size_t YencDecodeLineAvx512(const uint8_t* text, size_t length, uint8_t* out, size_t* written) {
  size_t at = 0, made = 0;
  while (at < length) {
    const size_t count = std::min<size_t>(64, length - at);
    const __mmask64 taken = FirstBytes(count);
    const __m512i characters = _mm512_maskz_loadu_epi8(taken, text + at);
    const __mmask64 escapes = _mm512_mask_cmpeq_epi8_mask(taken, characters, _mm512_set1_epi8('='));
    const __mmask64 lineEnds =
        _mm512_mask_cmpeq_epi8_mask(taken, characters, _mm512_set1_epi8('\r')) |
        _mm512_mask_cmpeq_epi8_mask(taken, characters, _mm512_set1_epi8('\n'));
    const __mmask64 nuls = _mm512_mask_cmpeq_epi8_mask(taken, characters, _mm512_setzero_si512());
    const __mmask64 escaped = escapes << 1;
    // Runs of escapes, escapes before a line end and NULs are the byte
    // loop's to handle.
    if (nuls != 0 || (escapes & escaped) != 0 || (escaped & lineEnds) != 0) break;
    __mmask64 kept = taken & ~(escapes | lineEnds);
    size_t step = count;
    if ((escapes >> (count - 1)) & 1) {
      // An escape in the last place: its character is on the next step,
      // or missing, which the byte loop reports.
      if (at + count == length) break;
      step = count - 1;
    }
    const __m512i lowered = _mm512_sub_epi8(
        _mm512_mask_add_epi8(characters, escaped, characters, _mm512_set1_epi8(-64)),
        _mm512_set1_epi8(42));
    _mm512_storeu_si512(out + made, _mm512_maskz_compress_epi8(kept, lowered));
    made += static_cast<size_t>(__builtin_popcountll(kept));
    at += step;
  }
  *written = made;
  return at;
}

}  // namespace fe::codecs::x86
