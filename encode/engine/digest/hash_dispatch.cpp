// Chooses each digest's block function once per process: the SHA extension
// kernels where cpuid reports them, the portable code otherwise or when
// FE_SIMD=none asks for it (so the tests run both).
#include <cstdlib>
#include <cstring>

#include "digest/hash.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>

#include "digest/x86/kernels.h"
#define FE_DIGEST_X86 1
#endif

namespace fe::digest {

namespace {

bool PortableForced() {
  const char* level = std::getenv("FE_SIMD");
  return level != nullptr && std::strcmp(level, "none") == 0;
}

bool HasShaExtensions() {
#ifdef FE_DIGEST_X86
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  const bool ssse3 = ecx & (1u << 9), sse41 = ecx & (1u << 19);
  if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return false;
  return ssse3 && sse41 && (ebx & (1u << 29)) != 0;
#else
  return false;
#endif
}

}  // namespace

BlockFunction FastestBlocks(HashKind kind) {
  static const bool accelerated = !PortableForced() && HasShaExtensions();
  switch (kind) {
    case HashKind::kMd5:
      return Md5Blocks;
    case HashKind::kSha1:
#ifdef FE_DIGEST_X86
      if (accelerated) return x86::Sha1BlocksShani;
#endif
      return Sha1Blocks;
    case HashKind::kSha256:
#ifdef FE_DIGEST_X86
      if (accelerated) return x86::Sha256BlocksShani;
#endif
      return Sha256Blocks;
  }
  return Md5Blocks;
}

}  // namespace fe::digest
