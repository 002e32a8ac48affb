// The only place that knows which vector kernels the text functions have.
#include "cpu/cpu_level.h"
#include "text/utf8_kernels.h"

#if defined(__x86_64__) || defined(__i386__)
#include "text/x86/kernels.h"
#define FE_TEXT_X86 1
#endif

namespace fe::text {

Utf8PrefixKernel ChosenUtf8PrefixKernel() {
#ifdef FE_TEXT_X86
  if (cpu::ChosenLevel() >= cpu::Level::kAvx2) return x86::Utf8WellFormedPrefixAvx2;
#endif
  return nullptr;
}

}  // namespace fe::text
