// Code pages other than UTF-7 and UTF-8 through ICU's converters.
#pragma once

#include <cstdint>

namespace fe::platform {

// MultiByteToWideChar / WideCharToMultiByte for an ICU code page, with the
// return values and error numbers of those calls.
int IcuToWide(uint32_t codePage, bool strict, const char* text, int length, char16_t* output,
              int outputSize);
int IcuFromWide(uint32_t codePage, const char16_t* text, int length, char* output, int outputSize,
                bool* usedDefault);

}  // namespace fe::platform
