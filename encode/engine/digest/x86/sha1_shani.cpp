// SHA-1 blocks with the SHA extensions: SHA1RNDS4 runs four rounds on ABCD,
// SHA1NEXTE derives the next E from the ABCD of four rounds before, and
// SHA1MSG1/MSG2 extend the schedule. Compiled with -msha -msse4.1 and only
// called after cpuid says so.
#include <immintrin.h>

#include "digest/x86/kernels.h"

namespace fe::digest::x86 {

namespace {

// Five groups of four rounds with the round function F (0 to 3).
template <int F>
void FiveGroups(__m128i& abcd, __m128i& previous, const __m128i* w) {
  for (int i = 0; i < 5; ++i) {
    const __m128i e = _mm_sha1nexte_epu32(previous, w[i]);
    previous = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e, F);
  }
}

}  // namespace

void Sha1BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count) {
  // The whole 16 bytes reversed: big-endian words, A in the top lane.
  const __m128i reverse = _mm_set_epi64x(0x0001020304050607ULL, 0x08090a0b0c0d0e0fULL);
  __m128i abcd = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(state)), 0x1B);
  __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
  for (; count > 0; --count, blocks += 64) {
    const __m128i abcdStart = abcd, eStart = e;
    __m128i w[20];
    for (int i = 0; i < 4; ++i) {
      w[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(blocks + 16 * i)),
                              reverse);
    }
    for (int i = 4; i < 20; ++i) {
      w[i] = _mm_sha1msg2_epu32(_mm_xor_si128(_mm_sha1msg1_epu32(w[i - 4], w[i - 3]), w[i - 2]),
                                w[i - 1]);
    }
    // The first group adds E itself; every later one takes it from the
    // ABCD that stood four rounds earlier.
    __m128i previous = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, _mm_add_epi32(e, w[0]), 0);
    for (int i = 1; i < 5; ++i) {
      const __m128i next = _mm_sha1nexte_epu32(previous, w[i]);
      previous = abcd;
      abcd = _mm_sha1rnds4_epu32(abcd, next, 0);
    }
    FiveGroups<1>(abcd, previous, w + 5);
    FiveGroups<2>(abcd, previous, w + 10);
    FiveGroups<3>(abcd, previous, w + 15);
    e = _mm_sha1nexte_epu32(previous, eStart);
    abcd = _mm_add_epi32(abcd, abcdStart);
  }
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state), _mm_shuffle_epi32(abcd, 0x1B));
  state[4] = static_cast<uint32_t>(_mm_extract_epi32(e, 3));
}

}  // namespace fe::digest::x86
