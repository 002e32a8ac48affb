// The Base85 decoder one character at a time, as it is described: the
// engine's vector kernel must match it in every output byte, count and
// state field.
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

}  // namespace fe::reference
