// The instruction-set level the engine's vector kernels may use, decided
// once per process from cpuid and capped by FE_CPU (scalar, sse, avx2 or
// avx512) so that the tests can run every kernel on one machine.
#pragma once

#include <cstdint>

namespace fe::cpu {

enum class Level : uint8_t {
  kScalar = 0,
  kSse = 1,     // SSSE3 and SSE4.1
  kAvx2 = 2,    // AVX2 with the operating system saving the YMM registers
  kAvx512 = 3,  // AVX-512 F, BW, VL, VBMI and VBMI2, and BMI2, with ZMM state saved
};

// Extensions outside the level ladder that some kernels also need.
struct Extras {
  bool sha = false;
  bool pclmul = false;
};

// What this processor and operating system support.
Level SupportedLevel();
Extras SupportedExtras();

// The level kernels are chosen for: the supported one, lowered by FE_CPU.
Level ChosenLevel();

// FE_CPU's value as a level; unknown or absent values do not cap.
Level CapFromName(const char* name);

}  // namespace fe::cpu
