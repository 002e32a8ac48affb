// Helpers the AVX-512 codec kernels share. GCC's plain forms of some
// instructions start from an undefined register and warn about it, so the
// kernels use the all-lanes masked forms.
#pragma once

#include <immintrin.h>

#include <cstddef>

namespace fe::codecs::x86 {

inline constexpr __mmask64 kAllLanes = ~__mmask64{0};
inline constexpr __mmask32 kAllWords = ~__mmask32{0};
inline constexpr __mmask8 kAllQwords = 0xFF;

// The mask of the first `count` byte lanes.
inline __mmask64 FirstBytes(size_t count) {
  return count >= 64 ? kAllLanes : (__mmask64{1} << count) - 1;
}

inline __m512i Permute(__m512i indices, __m512i table) {
  return _mm512_maskz_permutexvar_epi8(kAllLanes, indices, table);
}

inline __m512i MultiShift(__m512i shifts, __m512i lanes) {
  return _mm512_maskz_multishift_epi64_epi8(kAllLanes, shifts, lanes);
}

}  // namespace fe::codecs::x86
