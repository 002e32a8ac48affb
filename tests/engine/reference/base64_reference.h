// The Base64 chunk coders one character at a time, exactly as their state
// machines are described: the engine's group-at-a-time loops must match
// these in every output byte, count and state field.
#pragma once

#include <cstdint>

#include "file_encoder.h"

namespace fe::reference {

inline constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline int Base64Value(uint8_t c) {
  for (int i = 0; i < 64; ++i) {
    if (static_cast<uint8_t>(kBase64Alphabet[i]) == c) return i;
  }
  return -1;
}

inline int32_t Base64EncodeChunk(const uint8_t* input, int32_t length, char* output,
                                 int32_t capacity, Base64State* s, bool wrap) {
  if (capacity < int64_t{length} + length / 3) return -1;
  if (length < 1) return 0;
  int32_t i = 0;
  int32_t written = 0;
  while (written < capacity) {
    if (wrap && s->column == 72) s->phase = 4;
    switch (s->phase) {
      case 0:
        s->saved[0] = input[i++];
        output[written++] = kBase64Alphabet[s->saved[0] >> 2];
        s->phase = 1;
        ++s->column;
        break;
      case 1:
        s->saved[1] = input[i++];
        output[written++] = kBase64Alphabet[((s->saved[0] & 3) << 4) | (s->saved[1] >> 4)];
        s->phase = 2;
        ++s->column;
        break;
      case 2:
        s->saved[2] = input[i++];
        output[written++] = kBase64Alphabet[((s->saved[1] & 15) << 2) | (s->saved[2] >> 6)];
        s->phase = 3;
        ++s->column;
        break;
      case 3:
        output[written++] = kBase64Alphabet[s->saved[2] & 63];
        s->phase = 0;
        ++s->column;
        break;
      case 4:
        output[written++] = '\r';
        s->column = 0;
        s->phase = 5;
        break;
      case 5:
        output[written++] = '\n';
        s->phase = 0;
        break;
    }
    if (i == length) break;
  }
  return written;
}

inline int32_t Base64DecodeChunk(const char* text, int32_t length, uint8_t* output,
                                 int32_t capacity, Base64State* s) {
  int32_t written = 0;
  for (int32_t i = 0; i < length; ++i) {
    if (written == capacity) return written;
    const auto c = static_cast<uint8_t>(text[i]);
    if (c == '=') return written;
    const int v = Base64Value(c);
    if (v < 0) {
      const bool space = c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
      if (space || s->phase == 0) continue;
      return -1;
    }
    const auto value = static_cast<uint32_t>(v);
    switch (s->phase) {
      case 0:
        s->saved[0] = value;
        s->phase = 1;
        break;
      case 1:
        s->saved[1] = value;
        output[written++] = static_cast<uint8_t>((s->saved[0] << 2) | (s->saved[1] >> 4));
        s->phase = 2;
        break;
      case 2:
        s->saved[2] = value;
        output[written++] = static_cast<uint8_t>((s->saved[1] << 4) | (s->saved[2] >> 2));
        s->phase = 3;
        break;
      default:
        output[written++] = static_cast<uint8_t>((s->saved[2] << 6) | value);
        s->phase = 0;
        break;
    }
  }
  return written;
}

}  // namespace fe::reference
