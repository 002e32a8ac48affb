// Chooses each digest's block function once per process: the SHA extension
// kernels where the processor has them and FE_CPU leaves at least the SSE
// level, the portable code otherwise (so the tests run both).
#include "cpu/cpu_level.h"
#include "digest/hash.h"

#if defined(__x86_64__) || defined(__i386__)
#include "digest/x86/kernels.h"
#define FE_DIGEST_X86 1
#endif

namespace fe::digest {

BlockFunction FastestBlocks(HashKind kind) {
  static const bool accelerated =
      cpu::ChosenLevel() >= cpu::Level::kSse && cpu::SupportedExtras().sha;
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
