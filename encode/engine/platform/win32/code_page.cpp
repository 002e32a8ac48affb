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

bool IsValidCodePage(uint32_t codePage) {
  return ::IsValidCodePage(codePage) != FALSE;
}

uint32_t AnsiCodePage() {
  return ::GetACP();
}

bool IsLeadByte(uint32_t codePage, uint8_t byte) {
  return ::IsDBCSLeadByteEx(codePage, byte) != FALSE;
}

int WideToCodePage(uint32_t codePage, const char16_t* text, int length, char* output,
                   int outputSize, bool* usedDefault) {
  BOOL used = FALSE;
  const int written = ::WideCharToMultiByte(codePage, 0, reinterpret_cast<const wchar_t*>(text),
                                            length, output, outputSize, nullptr, &used);
  *usedDefault = used != FALSE;
  return written;
}

}  // namespace fe::platform
