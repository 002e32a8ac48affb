// SHA-256 blocks with the SHA extensions: SHA256RNDS2 runs two rounds on the
// state held as ABEF/CDGH, SHA256MSG1/MSG2 extend the schedule four words at
// a time. Compiled with -msha -msse4.1 and only called after cpuid says so.
#include <immintrin.h>

#include "digest/sha256_constants.h"
#include "digest/x86/kernels.h"

namespace fe::digest::x86 {

void Sha256BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count) {
  // Bytes of each word reversed: the message is big-endian.
  const __m128i byteSwap = _mm_set_epi64x(0x0c0d0e0f08090a0bULL, 0x0405060700010203ULL);
  const __m128i* roundKeys = reinterpret_cast<const __m128i*>(kSha256Rounds);
  __m128i dcba = _mm_loadu_si128(reinterpret_cast<const __m128i*>(state));
  __m128i hgfe = _mm_loadu_si128(reinterpret_cast<const __m128i*>(state + 4));
  const __m128i cdab = _mm_shuffle_epi32(dcba, 0xB1);
  const __m128i efgh = _mm_shuffle_epi32(hgfe, 0x1B);
  __m128i abef = _mm_alignr_epi8(cdab, efgh, 8);
  __m128i cdgh = _mm_blend_epi16(efgh, cdab, 0xF0);
  for (; count > 0; --count, blocks += 64) {
    const __m128i abefStart = abef, cdghStart = cdgh;
    __m128i w[16];
    for (int i = 0; i < 4; ++i) {
      w[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(blocks + 16 * i)),
                              byteSwap);
    }
    for (int i = 4; i < 16; ++i) {
      const __m128i sum = _mm_add_epi32(_mm_sha256msg1_epu32(w[i - 4], w[i - 3]),
                                        _mm_alignr_epi8(w[i - 1], w[i - 2], 4));
      w[i] = _mm_sha256msg2_epu32(sum, w[i - 1]);
    }
    for (int i = 0; i < 16; ++i) {
      __m128i message = _mm_add_epi32(w[i], _mm_load_si128(roundKeys + i));
      cdgh = _mm_sha256rnds2_epu32(cdgh, abef, message);
      message = _mm_shuffle_epi32(message, 0x0E);
      abef = _mm_sha256rnds2_epu32(abef, cdgh, message);
    }
    abef = _mm_add_epi32(abef, abefStart);
    cdgh = _mm_add_epi32(cdgh, cdghStart);
  }
  const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state), _mm_blend_epi16(feba, dchg, 0xF0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state + 4), _mm_alignr_epi8(dchg, feba, 8));
}

}  // namespace fe::digest::x86
