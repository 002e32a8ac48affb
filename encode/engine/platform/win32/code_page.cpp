#include <windows.h>

#include "platform/platform.h"

namespace fe::platform {

int WideToMultiByte(uint32_t codePage, uint32_t flags, const char16_t* text, int length,
                    char* output, int outputSize) {
  return ::WideCharToMultiByte(codePage, flags, reinterpret_cast<const wchar_t*>(text), length,
                               output, outputSize, nullptr, nullptr);
}

int MultiByteToWide(uint32_t codePage, uint32_t flags, const char* text, int length,
                    char16_t* output, int outputSize) {
  return ::MultiByteToWideChar(codePage, flags, text, length, reinterpret_cast<wchar_t*>(output),
                               outputSize);
}

}  // namespace fe::platform
