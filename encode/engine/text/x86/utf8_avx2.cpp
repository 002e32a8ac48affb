// Well-formed UTF-8 by three nibble lookups per byte pair (the method of
// Keiser and Lemire): the high nibble of the previous byte, its low nibble
// and the high nibble of the current byte each select a set of error kinds,
// and a pair is malformed when all three agree on one. Third and fourth
// bytes of long sequences are checked by position. 64 bytes per step;
// the kernel stops before the first step that is not clean and leaves the
// rest to the automaton, so the verdict stays the automaton's.
#include <immintrin.h>

#include "text/x86/kernels.h"

namespace fe::text::x86 {

namespace {

// Error kinds, one bit each. kTwoContinuations shares the top bit with the
// "third or fourth byte" marker so that the two cancel out.
constexpr uint8_t kTooShort = 1 << 0;      // lead, then not a continuation
constexpr uint8_t kTooLong = 1 << 1;       // ASCII, then a continuation
constexpr uint8_t kOverlong3 = 1 << 2;     // E0 80-9F
constexpr uint8_t kTooLarge = 1 << 3;      // F4 90-BF, F5-FF 90-BF
constexpr uint8_t kSurrogate = 1 << 4;     // ED A0-BF
constexpr uint8_t kOverlong2 = 1 << 5;     // C0-C1 80-BF
constexpr uint8_t kTooLarge1000 = 1 << 6;  // F5-FF 80-8F
constexpr uint8_t kOverlong4 = 1 << 6;     // F0 80-8F
constexpr uint8_t kTwoContinuations = 1 << 7;
constexpr uint8_t kCarry = kTooShort | kTooLong | kTwoContinuations;

__m256i Table(uint8_t v0, uint8_t v1, uint8_t v2, uint8_t v3, uint8_t v4, uint8_t v5, uint8_t v6,
              uint8_t v7, uint8_t v8, uint8_t v9, uint8_t v10, uint8_t v11, uint8_t v12,
              uint8_t v13, uint8_t v14, uint8_t v15) {
  const __m128i lane = _mm_setr_epi8(
      static_cast<char>(v0), static_cast<char>(v1), static_cast<char>(v2), static_cast<char>(v3),
      static_cast<char>(v4), static_cast<char>(v5), static_cast<char>(v6), static_cast<char>(v7),
      static_cast<char>(v8), static_cast<char>(v9), static_cast<char>(v10), static_cast<char>(v11),
      static_cast<char>(v12), static_cast<char>(v13), static_cast<char>(v14),
      static_cast<char>(v15));
  return _mm256_broadcastsi128_si256(lane);
}

struct Tables {
  __m256i first_high;
  __m256i first_low;
  __m256i second_high;
  __m256i low_nibble;
  __m256i third_floor;   // bytes from E0 up mark the byte two places on
  __m256i fourth_floor;  // bytes from F0 up mark the byte three places on
  __m256i open_at_end;   // a lead this close to the end still needs bytes
};

Tables MakeTables() {
  constexpr uint8_t kF = kTooShort | kTooLarge | kTooLarge1000 | kOverlong4;
  constexpr uint8_t kLarge = kCarry | kTooLarge | kTooLarge1000;
  constexpr uint8_t kCont8 =
      kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge1000 | kOverlong4;
  constexpr uint8_t kCont9 = kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge;
  constexpr uint8_t kContAB = kTooLong | kOverlong2 | kTwoContinuations | kSurrogate | kTooLarge;
  Tables t;
  t.first_high =
      Table(kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong,
            kTwoContinuations, kTwoContinuations, kTwoContinuations, kTwoContinuations,
            kTooShort | kOverlong2, kTooShort, kTooShort | kOverlong3 | kSurrogate, kF);
  t.first_low = Table(kCarry | kOverlong3 | kOverlong2 | kOverlong4, kCarry | kOverlong2, kCarry,
                      kCarry, kCarry | kTooLarge, kLarge, kLarge, kLarge, kLarge, kLarge, kLarge,
                      kLarge, kLarge, kLarge | kSurrogate, kLarge, kLarge);
  t.second_high =
      Table(kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
            kCont8, kCont9, kContAB, kContAB, kTooShort, kTooShort, kTooShort, kTooShort);
  t.low_nibble = _mm256_set1_epi8(0x0F);
  t.third_floor = _mm256_set1_epi8(static_cast<char>(0xE0 - 0x80));
  t.fourth_floor = _mm256_set1_epi8(static_cast<char>(0xF0 - 0x80));
  t.open_at_end =
      _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                       -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, static_cast<char>(0xEF),
                       static_cast<char>(0xDF), static_cast<char>(0xBF));
  return t;
}

// The vector `current` shifted on by `n` bytes, the gap filled from the end
// of `previous`.
template <int N>
__m256i Earlier(__m256i current, __m256i previous) {
  const __m256i straddle = _mm256_permute2x128_si256(previous, current, 0x21);
  return _mm256_alignr_epi8(current, straddle, 16 - N);
}

__m256i HighNibble(__m256i v, const Tables& t) {
  return _mm256_and_si256(_mm256_srli_epi16(v, 4), t.low_nibble);
}

// Nonzero lanes where the 32 bytes of `current` break a sequence.
__m256i Errors(__m256i current, __m256i previous, const Tables& t) {
  const __m256i prev1 = Earlier<1>(current, previous);
  const __m256i special = _mm256_and_si256(
      _mm256_and_si256(_mm256_shuffle_epi8(t.first_high, HighNibble(prev1, t)),
                       _mm256_shuffle_epi8(t.first_low, _mm256_and_si256(prev1, t.low_nibble))),
      _mm256_shuffle_epi8(t.second_high, HighNibble(current, t)));
  const __m256i third = _mm256_subs_epu8(Earlier<2>(current, previous), t.third_floor);
  const __m256i fourth = _mm256_subs_epu8(Earlier<3>(current, previous), t.fourth_floor);
  const __m256i must_continue =
      _mm256_and_si256(_mm256_or_si256(third, fourth), _mm256_set1_epi8(static_cast<char>(0x80)));
  return _mm256_xor_si256(must_continue, special);
}

bool AllZero(__m256i v) {
  return _mm256_testz_si256(v, v) != 0;
}

}  // namespace

size_t Utf8WellFormedPrefixAvx2(const uint8_t* bytes, size_t length) {
  const Tables t = MakeTables();
  __m256i previous = _mm256_setzero_si256();
  __m256i open = _mm256_setzero_si256();
  size_t at = 0;
  for (; at + 64 <= length; at += 64) {
    const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + at));
    const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + at + 32));
    if (_mm256_movemask_epi8(_mm256_or_si256(first, second)) == 0) {
      if (!AllZero(open)) break;  // a sequence cut off by ASCII
    } else {
      const __m256i errors = _mm256_or_si256(Errors(first, previous, t), Errors(second, first, t));
      if (!AllZero(errors)) break;
      open = _mm256_subs_epu8(second, t.open_at_end);
    }
    previous = second;
  }
  // Hand back at the start of the last sequence that may still be open:
  // a lead among the last three checked bytes.
  for (size_t back = 1; back <= 3 && back <= at; ++back) {
    const uint8_t byte = bytes[at - back];
    if ((byte & 0xC0) != 0x80) return byte >= 0xC0 ? at - back : at;
  }
  return at;
}

}  // namespace fe::text::x86
