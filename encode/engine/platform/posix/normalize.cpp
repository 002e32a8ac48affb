// Stand-in for NormalizeString(NormalizationKD): ICU's NFKD normaliser. The
// size query is exact here where Windows returns an estimate; callers treat
// it as an estimate on both.
#include <unicode/unorm2.h>

#include "errors/system_errors.h"
#include "platform/platform.h"

namespace fe::platform {

int NormalizeKd(const char16_t* text, int length, char16_t* output, int outputSize) {
  if (text == nullptr || length < 0 || outputSize < 0 || (outputSize > 0 && output == nullptr)) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfkd = unorm2_getNFKDInstance(&status);
  if (U_FAILURE(status)) {
    SetLastErrorCode(kErrorOutOfMemory);
    return 0;
  }
  const int32_t needed = unorm2_normalize(nfkd, text, length, output, outputSize, &status);
  if (outputSize == 0 && (status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status))) return needed;
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    SetLastErrorCode(kErrorInsufficientBuffer);
    return -needed;
  }
  if (U_FAILURE(status)) {
    SetLastErrorCode(kErrorNoUnicodeTranslation);
    return 0;
  }
  return needed;
}

}  // namespace fe::platform
