// The only place that knows which vector kernels the codecs have.
#include "codecs/base32_kernels.h"
#include "codecs/base64_kernels.h"
#include "codecs/base85_kernels.h"
#include "codecs/qp_kernels.h"
#include "codecs/url_kernels.h"
#include "codecs/uu_kernels.h"
#include "codecs/yenc_kernels.h"
#include "cpu/cpu_level.h"

#if defined(__x86_64__) || defined(__i386__)
#include "codecs/x86/kernels.h"
#define FE_CODECS_X86 1
#endif

namespace fe::codecs {

namespace {

const Base64Kernels* PickBase64Kernels() {
#ifdef FE_CODECS_X86
  static constexpr Base64Kernels kAvx512{
      x86::Base64EncodeGroupsAvx512, x86::Base64EncodeLinesAvx512, x86::Base64DecodeGroupsAvx512};
  static constexpr Base64Kernels kAvx2{x86::Base64EncodeGroupsAvx2, nullptr,
                                       x86::Base64DecodeGroupsAvx2};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
  if (cpu::ChosenLevel() >= cpu::Level::kAvx2) return &kAvx2;
#endif
  return nullptr;
}

// Base32's kernels need VBMI's byte permutes and multishift.
const Base32Kernels* PickBase32Kernels() {
#ifdef FE_CODECS_X86
  static constexpr Base32Kernels kAvx512{x86::Base32EncodeGroupsAvx512,
                                         x86::Base32DecodeGroupsAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

// Base85's group permutes need VBMI, its 'z' squeeze VBMI2.
const Base85Kernels* PickBase85Kernels() {
#ifdef FE_CODECS_X86
  static constexpr Base85Kernels kAvx512{x86::Base85DecodeGroupsAvx512,
                                         x86::Base85EncodeGroupsAvx512, x86::Z85DecodeGroupsAvx512,
                                         x86::Z85EncodeGroupsAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

// Quoted-printable squeezes with VBMI2.
const QpKernels* PickQpKernels() {
#ifdef FE_CODECS_X86
  static constexpr QpKernels kAvx512{x86::QpEncodeBytesAvx512, x86::QpEncodePiecesAvx512,
                                     x86::QpDecodeTextAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

// URL escaping squeezes with VBMI2, as quoted-printable does.
const UrlKernels* PickUrlKernels() {
#ifdef FE_CODECS_X86
  static constexpr UrlKernels kAvx512{x86::UrlEncodeBytesAvx512, x86::UrlDecodeTextAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

// uuencode shares Base64's sextet steps, which need VBMI.
const UuKernels* PickUuKernels() {
#ifdef FE_CODECS_X86
  static constexpr UuKernels kAvx512{x86::UuEncodeGroupsAvx512, x86::UuDecodeGroupsAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

// yEnc's kernels squeeze with VBMI2; below AVX-512 the byte loops run.
const YencKernels* PickYencKernels() {
#ifdef FE_CODECS_X86
  static constexpr YencKernels kAvx512{x86::YencEncodeBlocksAvx512, x86::YencDecodeLineAvx512};
  if (cpu::ChosenLevel() >= cpu::Level::kAvx512) return &kAvx512;
#endif
  return nullptr;
}

}  // namespace

const Base64Kernels* ChosenBase64Kernels() {
  static const Base64Kernels* const chosen = PickBase64Kernels();
  return chosen;
}

const Base32Kernels* ChosenBase32Kernels() {
  static const Base32Kernels* const chosen = PickBase32Kernels();
  return chosen;
}

const Base85Kernels* ChosenBase85Kernels() {
  static const Base85Kernels* const chosen = PickBase85Kernels();
  return chosen;
}

const QpKernels* ChosenQpKernels() {
  static const QpKernels* const chosen = PickQpKernels();
  return chosen;
}

const UrlKernels* ChosenUrlKernels() {
  static const UrlKernels* const chosen = PickUrlKernels();
  return chosen;
}

const UuKernels* ChosenUuKernels() {
  static const UuKernels* const chosen = PickUuKernels();
  return chosen;
}

const YencKernels* ChosenYencKernels() {
  static const YencKernels* const chosen = PickYencKernels();
  return chosen;
}

}  // namespace fe::codecs
