// Stand-in for WideCharToMultiByte / MultiByteToWideChar with the argument
// checks and error numbers of the Win32 calls. UTF-8 (65001) and UTF-7
// (65000) are converted here; other code pages are not available yet.
#include <string_view>

#include "errors/system_errors.h"
#include "platform/platform.h"
#include "platform/posix/unicode_transforms.h"

namespace fe::platform {

namespace {

constexpr uint32_t kWideFailOnInvalid = 0x80;  // WC_ERR_INVALID_CHARS

template <typename Unit>
size_t TerminatedLength(const Unit* text) {
  size_t n = 0;
  while (text[n] != 0)
    ++n;
  return n + 1;  // the terminator is converted too
}

template <typename In, typename Out>
bool ValidArguments(const In* text, int length, const Out* output, int outputSize) {
  return text != nullptr && length != 0 && length >= -1 && outputSize >= 0 &&
         (outputSize == 0 || output != nullptr);
}

template <typename Unit>
int Finish(bool converted, uint32_t failure, const BoundedWriter<Unit>& out) {
  if (!converted) {
    SetLastErrorCode(failure);
    return 0;
  }
  if (out.overflow()) {
    SetLastErrorCode(kErrorInsufficientBuffer);
    return 0;
  }
  return out.count();
}

}  // namespace

int WideToMultiByte(uint32_t codePage, uint32_t flags, const char16_t* text, int length,
                    char* output, int outputSize) {
  if (!ValidArguments(text, length, output, outputSize)) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  const std::u16string_view input(text, length == -1 ? TerminatedLength(text) : length);
  BoundedWriter<char> out(output, outputSize);
  switch (codePage) {
    case kCodePageUtf8:
      if ((flags & ~kWideFailOnInvalid) != 0) break;
      return Finish(Utf16ToUtf8(input, flags != 0, out), kErrorNoUnicodeTranslation, out);
    case kCodePageUtf7:
      if (flags != 0) break;
      Utf16ToUtf7(input, out);
      return Finish(true, 0, out);
    default:
      SetLastErrorCode(kErrorInvalidParameter);
      return 0;
  }
  SetLastErrorCode(kErrorInvalidFlags);
  return 0;
}

int MultiByteToWide(uint32_t codePage, uint32_t flags, const char* text, int length,
                    char16_t* output, int outputSize) {
  if (!ValidArguments(text, length, output, outputSize)) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  const std::string_view input(text, length == -1 ? TerminatedLength(text) : length);
  BoundedWriter<char16_t> out(output, outputSize);
  switch (codePage) {
    case kCodePageUtf8:
      if ((flags & ~kFailOnInvalidChars) != 0) break;
      return Finish(Utf8ToUtf16(input, flags != 0, out), kErrorNoUnicodeTranslation, out);
    case kCodePageUtf7:
      if (flags != 0) break;
      Utf7ToUtf16(input, out);
      return Finish(true, 0, out);
    default:
      SetLastErrorCode(kErrorInvalidParameter);
      return 0;
  }
  SetLastErrorCode(kErrorInvalidFlags);
  return 0;
}

}  // namespace fe::platform
