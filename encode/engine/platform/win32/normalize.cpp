#include <windows.h>

#include "platform/platform.h"

namespace fe::platform {

int NormalizeKd(const char16_t* text, int length, char16_t* output, int outputSize) {
  return ::NormalizeString(NormalizationKD, reinterpret_cast<const wchar_t*>(text), length,
                           reinterpret_cast<wchar_t*>(output), outputSize);
}

}  // namespace fe::platform
