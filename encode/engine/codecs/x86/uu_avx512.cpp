// The bodies of uuencoded lines with AVX-512 VBMI: the sextet steps with
// the uuencode alphabet, 16 groups at a time. Nothing is validated on the
// way back: every character gives the six bits of (c - 32).
#include <immintrin.h>

#include <algorithm>

#include "codecs/uu_alphabet.h"
#include "codecs/x86/kernels.h"
#include "codecs/x86/sextets_avx512.h"

namespace fe::codecs::x86 {

void UuEncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out) {
  const SextetEncoder encode(kUuAlphabet.data());
  for (size_t done = 0; done < groups; done += kSextetStepGroups) {
    const size_t n = std::min(kSextetStepGroups, groups - done);
    const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(3 * n), in + 3 * done);
    _mm512_mask_storeu_epi8(out + 4 * done, FirstBytes(4 * n), encode(bytes));
  }
}

void UuDecodeGroupsAvx512(const uint8_t* text, size_t groups, uint8_t* out) {
  const __m512i space = _mm512_set1_epi8(32);
  const __m512i sixBits = _mm512_set1_epi8(63);
  for (size_t done = 0; done < groups; done += kSextetStepGroups) {
    const size_t n = std::min(kSextetStepGroups, groups - done);
    const __m512i characters = _mm512_maskz_loadu_epi8(FirstBytes(4 * n), text + 4 * done);
    const __m512i sextets = _mm512_and_si512(_mm512_sub_epi8(characters, space), sixBits);
    _mm512_mask_storeu_epi8(out + 3 * done, FirstBytes(3 * n), SextetBytes(sextets));
  }
}

}  // namespace fe::codecs::x86
