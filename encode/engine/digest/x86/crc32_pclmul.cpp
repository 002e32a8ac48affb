// CRC-32 by folding: 64 bytes at a time are carried forward with carry-less
// multiplications by x^k mod P (constants for the reflected polynomial),
// leaving a 16-byte remainder with the same CRC as everything before it,
// which the table then finishes together with the tail. Compiled with
// -mpclmul -msse4.1 and only called after cpuid says so.
#include <immintrin.h>

#include "digest/crc32.h"
#include "digest/x86/kernels.h"

namespace fe::digest::x86 {

namespace {

__m128i Load(const uint8_t* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// x * (k_low, k_high) folded onto the next 16 bytes.
__m128i Fold(__m128i x, __m128i k, __m128i next) {
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11)), next);
}

}  // namespace

uint32_t Crc32Pclmul(uint32_t crc, const uint8_t* data, size_t size) {
  if (size < 64) return Crc32Bytes(crc, data, size);
  // x^(4*128+64) and x^(4*128) mod P for four lanes; x^(128+64), x^128 for one.
  const __m128i fourLanes = _mm_set_epi64x(0x01c6e41596, 0x0154442bd4);
  const __m128i oneLane = _mm_set_epi64x(0x00ccaa009e, 0x01751997d0);
  __m128i x0 = _mm_xor_si128(Load(data), _mm_cvtsi32_si128(static_cast<int>(crc)));
  __m128i x1 = Load(data + 16), x2 = Load(data + 32), x3 = Load(data + 48);
  data += 64;
  size -= 64;
  for (; size >= 64; data += 64, size -= 64) {
    x0 = Fold(x0, fourLanes, Load(data));
    x1 = Fold(x1, fourLanes, Load(data + 16));
    x2 = Fold(x2, fourLanes, Load(data + 32));
    x3 = Fold(x3, fourLanes, Load(data + 48));
  }
  __m128i x = Fold(Fold(Fold(x0, oneLane, x1), oneLane, x2), oneLane, x3);
  for (; size >= 16; data += 16, size -= 16)
    x = Fold(x, oneLane, Load(data));
  alignas(16) uint8_t rest[16];
  _mm_store_si128(reinterpret_cast<__m128i*>(rest), x);
  return Crc32Bytes(Crc32Bytes(0, rest, 16), data, size);
}

}  // namespace fe::digest::x86
