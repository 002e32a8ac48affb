#include "text/wide_front_end.h"

#include <new>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "platform/platform.h"

namespace fe::text {

size_t WideLength(const char16_t* text) {
  size_t n = 0;
  while (text[n] != 0)
    ++n;
  return n;
}

bool WideToUtf8(const char16_t* text, size_t length, std::string* utf8) {
  utf8->clear();
  if (length == 0) return true;
  try {
    // At most three bytes per unit: a surrogate pair takes four for two.
    utf8->resize(length * 3);
  } catch (const std::bad_alloc&) {
    SetLastError(kErrorOutOfMemory);
    return false;
  }
  const int written =
      platform::WideToMultiByte(platform::kCodePageUtf8, 0, text, static_cast<int>(length),
                                utf8->data(), static_cast<int>(utf8->size()));
  utf8->resize(static_cast<size_t>(written));
  return written > 0;
}

int32_t Utf8ToWideOutput(std::string_view utf8, char16_t* output, int32_t capacity) {
  const bool counting = output == nullptr || capacity == 0;
  if (utf8.empty()) {
    if (!counting) output[0] = 0;
    SetLastError(0);
    return 0;
  }
  const int units = platform::MultiByteToWide(platform::kCodePageUtf8, 0, utf8.data(),
                                              static_cast<int>(utf8.size()), nullptr, 0);
  if (units <= 0) return 0;
  if (counting) {
    SetLastError(0);
    return units;
  }
  if (units >= capacity) {
    SetLastError(kErrorInsufficientBuffer);
    return 0;
  }
  platform::MultiByteToWide(platform::kCodePageUtf8, 0, utf8.data(), static_cast<int>(utf8.size()),
                            output, capacity);
  output[units] = 0;
  SetLastError(0);
  return units;
}

}  // namespace fe::text
