// The quoted-printable chunk decoder one character at a time, as its
// phases are described: the engine's run copies and vector kernel must
// match it in every output byte, count and state field.
#pragma once

#include <cstdint>

#include "file_encoder.h"

namespace fe::reference {

inline int QpHexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

inline int32_t QpDecodeChunk(const char* text, int32_t length, uint8_t* out, int32_t capacity,
                             QpDecodeState* s) {
  int32_t count = 0;
  for (int32_t i = 0; i < length; ++i) {
    if (count >= capacity) return count;
    const char c = text[i];
    if (s->phase == 0) {  // text
      if (c == '=') {
        s->phase = 1;
      } else {
        out[count++] = static_cast<uint8_t>(c);
      }
    } else if (s->phase == 1) {  // after '='
      if (c == '\r' || c == '\n') {
        s->phase = 3;
      } else if (QpHexValue(c) < 0) {
        s->phase = 0;
        return -1;
      } else {
        s->high = static_cast<uint16_t>(QpHexValue(c));
        s->phase = 2;
      }
    } else if (s->phase == 2) {  // after '=' and a digit; white space waits
      if (c == ' ' || (c >= '\t' && c <= '\r')) continue;
      s->phase = 0;
      if (QpHexValue(c) < 0) return -1;
      s->low = static_cast<uint16_t>(QpHexValue(c));
      out[count++] = static_cast<uint8_t>(s->high << 4 | s->low);
    } else {  // the character after a soft line break's line end is dropped
      s->phase = 0;
    }
  }
  return count;
}

}  // namespace fe::reference
