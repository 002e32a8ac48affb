// The Z85 coders one group and one character at a time, as they are
// described: the engine's vector kernels must match them in every output
// byte and count.
#pragma once

#include <cstdint>
#include <cstring>

#include "reference/base85_reference.h"

namespace fe::reference {

inline constexpr char kZ85Alphabet[] =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-:+=^!/*?&<>()[]{}@%$#";

// Z85Encode's result for whole groups: characters written, or -1 when the
// terminator does not fit.
inline int32_t Z85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  output[0] = '\0';
  int64_t count = 0;
  for (int32_t i = 0; i < length && count + 5 <= capacity; i += 4) {
    uint8_t digits[5];
    Base85Digits(BigEndianGroup(input + i, 4), digits);
    for (int k = 0; k < 5; ++k)
      output[count++] = kZ85Alphabet[digits[k]];
  }
  if (count >= capacity) return -1;
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

// Z85Decode's result for text of whole groups: bytes written while four
// fit, or -1 at the first character outside the alphabet (the groups
// before it stay written).
inline int32_t Z85Decode(const char* text, uint8_t* output, int32_t capacity) {
  const size_t length = std::strlen(text);
  int64_t count = 0;
  for (size_t i = 0; i < length && count + 4 <= capacity; i += 5) {
    uint32_t value = 0;
    for (int k = 0; k < 5; ++k) {
      const char* at = std::strchr(kZ85Alphabet, text[i + k]);
      if (at == nullptr) return -1;
      value = value * 85 + static_cast<uint32_t>(at - kZ85Alphabet);
    }
    for (int k = 0; k < 4; ++k)
      output[count + k] = static_cast<uint8_t>(value >> (24 - 8 * k));
    count += 4;
  }
  return static_cast<int32_t>(count);
}

}  // namespace fe::reference
