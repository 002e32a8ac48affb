// Message lookup shared by every caller that shows an error as text.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "file_encoder.h"
#include "platform/platform.h"

namespace {

// Message texts are all shorter than this; the lookup never reads more.
constexpr int kMessageBufferSize = 128;

bool IsTrailingBlank(char c) {
  return c == '\r' || c == '\n' || c == ' ';
}

}  // namespace

extern "C" int32_t FormatErrorMessage(uint32_t code, char* buffer, int32_t size) {
  if (buffer == nullptr || size < 1) return -1;
  char text[kMessageBufferSize];
  int length = fe::platform::FormatMessageText(code, text, kMessageBufferSize);
  // Table texts may end in a line break; only CR, LF and space are trimmed.
  while (length > 0 && IsTrailingBlank(text[length - 1]))
    --length;
  if (length <= 0) {
    length = std::snprintf(text, sizeof text, "Undefined control error (0x%08" PRIX32 ")", code);
  }
  const int32_t copied = length < size ? length : size - 1;
  std::memcpy(buffer, text, static_cast<size_t>(copied));
  buffer[copied] = '\0';
  return copied;
}
