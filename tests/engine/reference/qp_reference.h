// Quoted-printable one byte and one character at a time, as the encoder
// and the decoder's phases are described: the engine's run copies and
// vector kernels must match them in every output byte, count and state
// field.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

// QpEncode's characters for `input` into *out, or -1 where an item would
// cross `bufferSize`. Only an item's first character must fit the
// capacity.
inline int64_t QpEncode(const uint8_t* input, int32_t length, int64_t capacity, bool wrap,
                        int64_t bufferSize, std::string* out) {
  if (capacity < int64_t{length} + length / 3) return -1;
  int column = 0;
  for (int32_t i = 0; i < length && static_cast<int64_t>(out->size()) < capacity; ++i) {
    if (wrap && column > 72) {
      if (static_cast<int64_t>(out->size()) + 3 > bufferSize) return -1;
      *out += "=\r\n";
      column = 0;
    }
    const uint8_t c = input[i];
    const bool blankBeforeCr = (c == ' ' || c == '\t') && i + 1 < length && input[i + 1] == '\r';
    const bool plain =
        c >= 32 && c <= 126 && !blankBeforeCr &&
        std::string_view("!\"#$@[\\]^`{|}=").find(static_cast<char>(c)) == std::string_view::npos;
    std::string item(1, static_cast<char>(c));
    if (!plain) item = {'=', "0123456789ABCDEF"[c >> 4], "0123456789ABCDEF"[c & 15]};
    if (static_cast<int64_t>(out->size() + item.size()) > bufferSize) return -1;
    *out += item;
    column += static_cast<int>(item.size());
  }
  return static_cast<int64_t>(out->size());
}

}  // namespace fe::reference
