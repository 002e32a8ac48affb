// The Base32 chunk coders one byte and one character at a time, through
// the bit accumulator alone: the engine's group loops and vector kernels
// must match these in every output byte, count and state field.
#pragma once

#include <cstdint>

#include "file_encoder.h"

namespace fe::reference {

inline constexpr char kBase32Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";

// The value of an alphabet character in either case, or -1.
inline int Base32Value(uint8_t c) {
  if (c >= 'a' && c <= 'z') c = static_cast<uint8_t>(c - 'a' + 'A');
  for (int i = 0; i < 32; ++i) {
    if (static_cast<uint8_t>(kBase32Alphabet[i]) == c) return i;
  }
  return -1;
}

inline int32_t Base32EncodeChunk(const uint8_t* input, int32_t length, char* output,
                                 int32_t capacity, Base32State* s, bool wrap) {
  int32_t written = 0;
  const auto lineBreak = [&] {
    if (written + 2 > capacity) return false;
    output[written++] = '\r';
    output[written++] = '\n';
    s->column = 0;
    return true;
  };
  if (wrap && s->column == 72 && !lineBreak()) return 0;
  int32_t i = 0;
  while (i < length && written < capacity) {
    s->accumulator = (s->accumulator << 8) | input[i++];
    s->bits += 8;
    while (s->bits >= 5 && written < capacity) {
      s->bits -= 5;
      output[written++] = kBase32Alphabet[(s->accumulator >> s->bits) & 31];
      s->accumulator &= (uint64_t{1} << s->bits) - 1;
      if (wrap && ++s->column == 72 && !lineBreak()) return written;
    }
  }
  return written;
}

inline int32_t Base32DecodeChunk(const char* text, int32_t length, uint8_t* output,
                                 int32_t capacity, Base32State* s) {
  int32_t written = 0;
  for (int32_t i = 0; i < length; ++i) {
    const auto c = static_cast<uint8_t>(text[i]);
    if (c == '=') return written;
    const int value = Base32Value(c);
    if (value < 0) {
      const bool space = c == ' ' || (c >= '\t' && c <= '\r');
      if (space || s->bits == 0) continue;
      return -1;
    }
    s->accumulator = (s->accumulator << 5) | static_cast<uint64_t>(value);
    s->bits += 5;
    if (s->bits < 8) continue;
    if (written >= capacity) return written;
    s->bits -= 8;
    output[written++] = static_cast<uint8_t>(s->accumulator >> s->bits);
    s->accumulator &= (uint64_t{1} << s->bits) - 1;
  }
  return written;
}

}  // namespace fe::reference
