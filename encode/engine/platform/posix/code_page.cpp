// Stand-in for WideCharToMultiByte / MultiByteToWideChar with the argument
// checks and error numbers of the Win32 calls. UTF-8 (65001) and UTF-7
// (65000) are converted here; other code pages go through ICU.
#include <string_view>

#include "errors/system_errors.h"
#include "platform/platform.h"
#include "platform/posix/icu_code_page.h"
#include "platform/posix/unicode_transforms.h"

namespace fe::platform {

namespace {

// The conversions of one direction.
template <typename In, typename Out>
struct Transforms {
  uint32_t strictFlag;  // the flag that makes UTF-8 fail on invalid input
  bool (*utf8)(std::basic_string_view<In>, bool, BoundedWriter<Out>&);
  void (*utf7)(std::basic_string_view<In>, BoundedWriter<Out>&);
};

constexpr Transforms<char16_t, char> kToMultiByte{0x80 /* WC_ERR_INVALID_CHARS */, Utf16ToUtf8,
                                                  Utf16ToUtf7};
constexpr Transforms<char, char16_t> kToWide{kFailOnInvalidChars, Utf8ToUtf16, Utf7ToUtf16};

template <typename Unit>
size_t TerminatedLength(const Unit* text) {
  size_t n = 0;
  while (text[n] != 0)
    ++n;
  return n + 1;  // the terminator is converted too
}

template <typename In, typename Out>
int Convert(const Transforms<In, Out>& transforms, uint32_t codePage, uint32_t flags,
            const In* text, int length, Out* output, int outputSize) {
  if (text == nullptr || length == 0 || length < -1 || outputSize < 0 ||
      (outputSize > 0 && output == nullptr)) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  const std::basic_string_view<In> input(text, length == -1 ? TerminatedLength(text) : length);
  BoundedWriter<Out> out(output, outputSize);
  uint32_t failure = 0;
  switch (codePage) {
    case kCodePageUtf8:
      if ((flags & ~transforms.strictFlag) != 0) {
        failure = kErrorInvalidFlags;
      } else if (!transforms.utf8(input, flags != 0, out)) {
        failure = kErrorNoUnicodeTranslation;
      }
      break;
    case kCodePageUtf7:
      if (flags != 0) {
        failure = kErrorInvalidFlags;
      } else {
        transforms.utf7(input, out);
      }
      break;
    default:
      failure = kErrorInvalidParameter;
      break;
  }
  if (failure == 0 && out.overflow()) failure = kErrorInsufficientBuffer;
  if (failure != 0) {
    SetLastErrorCode(failure);
    return 0;
  }
  return out.count();
}

bool ConvertedByIcu(uint32_t codePage) {
  return codePage != kCodePageUtf7 && codePage != kCodePageUtf8 && IsValidCodePage(codePage);
}

}  // namespace

int WideToMultiByte(uint32_t codePage, uint32_t flags, const char16_t* text, int length,
                    char* output, int outputSize) {
  if (ConvertedByIcu(codePage) && text != nullptr && length != 0) {
    bool usedDefault = false;
    return IcuFromWide(codePage, text, length, output, outputSize, &usedDefault);
  }
  return Convert(kToMultiByte, codePage, flags, text, length, output, outputSize);
}

int MultiByteToWide(uint32_t codePage, uint32_t flags, const char* text, int length,
                    char16_t* output, int outputSize) {
  if (ConvertedByIcu(codePage) && text != nullptr && length != 0) {
    return IcuToWide(codePage, (flags & kFailOnInvalidChars) != 0, text, length, output,
                     outputSize);
  }
  return Convert(kToWide, codePage, flags, text, length, output, outputSize);
}

int WideToCodePage(uint32_t codePage, const char16_t* text, int length, char* output,
                   int outputSize, bool* usedDefault) {
  *usedDefault = false;
  if (ConvertedByIcu(codePage))
    return IcuFromWide(codePage, text, length, output, outputSize, usedDefault);
  return Convert(kToMultiByte, codePage, 0, text, length, output, outputSize);
}

}  // namespace fe::platform
