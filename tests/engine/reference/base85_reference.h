// The Base85 coders one group and one character at a time, as they are
// described: the engine's vector kernels must match them in every output
// byte, count and state field.
#pragma once

#include <cstdint>
#include <cstring>

namespace fe::reference {

struct Base85State {
  uint32_t value = 0;
  int digits = 0;
  bool full = false;
};

// Bytes written, or -1 for a 'z' inside a group.
inline int32_t Base85Feed(const char* text, size_t length, uint8_t* out, int64_t capacity,
                          Base85State* s) {
  int64_t count = 0;
  for (size_t i = 0; i < length && !s->full; ++i) {
    const auto c = static_cast<uint8_t>(text[i]);
    if (c == 'z') {
      if (s->digits != 0) return -1;
      if (count + 4 > capacity) {
        s->full = true;
        break;
      }
      std::memset(out + count, 0, 4);
      count += 4;
    } else if (c >= '!' && c <= 'u') {
      s->value = s->value * 85 + (c - '!');
      if (++s->digits < 5) continue;
      if (count + 4 > capacity) {
        s->full = true;
        break;
      }
      for (int k = 0; k < 4; ++k)
        out[count + k] = static_cast<uint8_t>(s->value >> (24 - 8 * k));
      count += 4;
      s->value = 0;
      s->digits = 0;
    }
  }
  return static_cast<int32_t>(count);
}

// The five digits of a group's value, most significant first, by plain
// division.
inline void Base85Digits(uint32_t value, uint8_t digits[5]) {
  for (int k = 4; k >= 0; --k) {
    digits[k] = static_cast<uint8_t>(value % 85);
    value /= 85;
  }
}

inline uint32_t BigEndianGroup(const uint8_t* in, int size) {
  uint32_t value = 0;
  for (int k = 0; k < 4; ++k)
    value = (value << 8) | (k < size ? in[k] : 0u);
  return value;
}

// Base85Encode's result: characters written, or -1 for an empty input or
// no room for the terminator. A group is written only while five
// characters still fit.
inline int32_t Base85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  output[0] = '\0';
  if (length < 1) return -1;
  int64_t count = 0;
  for (int32_t i = 0; i < length && count + 5 <= capacity; i += 4) {
    const int size = length - i < 4 ? length - i : 4;
    const uint32_t value = BigEndianGroup(input + i, size);
    if (size == 4 && value == 0) {
      output[count++] = 'z';
      continue;
    }
    uint8_t digits[5];
    Base85Digits(value, digits);
    for (int k = 0; k <= size; ++k)
      output[count++] = static_cast<char>('!' + digits[k]);
  }
  if (count >= capacity) return -1;
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

}  // namespace fe::reference
