// URL encoding and decoding one byte and one character at a time, as they
// are described: the engine's vector kernels must match them in every
// output byte and count. The buffers hold capacity + 1 places.
#pragma once

#include <cstdint>
#include <cstdio>

namespace fe::reference {

inline bool UrlWrittenAsIs(uint8_t c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '~';
}

inline int HexDigitValue(uint8_t c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

inline int32_t UrlEncode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  int64_t count = 0;
  for (int32_t i = 0; i < length; ++i) {
    if (count >= capacity) return -1;
    if (UrlWrittenAsIs(input[i])) {
      output[count++] = static_cast<char>(input[i]);
      continue;
    }
    if (capacity - count < 4) return -1;
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", input[i]);
    for (int k = 0; k < 3; ++k)
      output[count++] = escape[k];
  }
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

// A '+' reads as a space and is never passed, so the rest of the text
// reads as spaces.
inline int32_t UrlDecode(const char* text, int32_t length, uint8_t* output, int32_t capacity) {
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  int64_t count = 0;
  for (int32_t i = 0; i < length;) {
    if (count >= capacity) return -1;
    if (in[i] == '+') {
      output[count++] = ' ';
      ++i;
      while (i < length) {  // every character left, whatever it is
        if (count >= capacity) return -1;
        output[count++] = ' ';
        ++i;
      }
      break;
    }
    if (in[i] == '%' && length - i > 2 && HexDigitValue(in[i + 1]) >= 0 &&
        HexDigitValue(in[i + 2]) >= 0) {
      output[count++] =
          static_cast<uint8_t>(HexDigitValue(in[i + 1]) * 16 + HexDigitValue(in[i + 2]));
      i += 3;
      continue;
    }
    output[count++] = in[i++];
  }
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

}  // namespace fe::reference
