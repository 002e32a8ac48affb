// cpuid and XGETBV, read once. A level counts only when the operating
// system saves the registers it uses, as Windows and Linux report in XCR0.
#include "cpu/cpu_level.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define FE_CPU_X86 1
#endif

namespace fe::cpu {

namespace {

struct Detected {
  Level level = Level::kScalar;
  Extras extras;
};

#ifdef FE_CPU_X86
bool Bit(unsigned value, int bit) {
  return (value >> bit & 1u) != 0;
}

uint64_t SavedStateMask() {
  unsigned low = 0, high = 0;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return static_cast<uint64_t>(high) << 32 | low;
}
#endif

Detected Detect() {
  Detected found;
#ifdef FE_CPU_X86
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return found;
  const bool sse = Bit(ecx, 9) && Bit(ecx, 19);
  const bool os_saves_avx = Bit(ecx, 27) && Bit(ecx, 28);
  found.extras.pclmul = Bit(ecx, 1);
  unsigned b7 = 0, c7 = 0, d7 = 0;
  if (!__get_cpuid_count(7, 0, &eax, &b7, &c7, &d7)) b7 = c7 = 0;
  found.extras.sha = Bit(b7, 29);
  const uint64_t saved = os_saves_avx ? SavedStateMask() : 0;
  const bool ymm = (saved & 0x6) == 0x6;
  const bool zmm = (saved & 0xE6) == 0xE6;
  if (!sse) return found;
  found.level = Level::kSse;
  if (!ymm || !Bit(b7, 5)) return found;
  found.level = Level::kAvx2;
  if (zmm && Bit(b7, 16) && Bit(b7, 30) && Bit(b7, 31) && Bit(c7, 1) && Bit(c7, 6) && Bit(b7, 8)) {
    found.level = Level::kAvx512;
  }
#endif
  return found;
}

const Detected& Processor() {
  static const Detected detected = Detect();
  return detected;
}

}  // namespace

Level SupportedLevel() {
  return Processor().level;
}

Extras SupportedExtras() {
  return Processor().extras;
}

Level CapFromName(const char* name) {
  if (name == nullptr) return Level::kAvx512;
  if (std::strcmp(name, "scalar") == 0) return Level::kScalar;
  if (std::strcmp(name, "sse") == 0) return Level::kSse;
  if (std::strcmp(name, "avx2") == 0) return Level::kAvx2;
  return Level::kAvx512;
}

Level ChosenLevel() {
  static const Level chosen = std::min(SupportedLevel(), CapFromName(std::getenv("FE_CPU")));
  return chosen;
}

}  // namespace fe::cpu
