// yEnc data lines one byte and one character at a time, exactly as the
// format describes them: the engine's vector and table loops must give
// these characters, bytes and results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fe::reference {

inline bool YencCritical(uint8_t c) {
  return c == 0 || c == 9 || c == 10 || c == 13 || c == '.' || c == '=';
}

// The characters for `length` bytes on a line that already holds
// *lineUsed characters; the line is closed after the byte that brings it
// to 128 characters or more.
inline std::string YencEncodeBody(const uint8_t* in, size_t length, size_t* lineUsed) {
  std::string text;
  for (size_t i = 0; i < length; ++i) {
    const auto c = static_cast<uint8_t>(in[i] + 42);
    if (YencCritical(c)) {
      text += '=';
      text += static_cast<char>(c + 64);
      *lineUsed += 2;
    } else {
      text += static_cast<char>(c);
      *lineUsed += 1;
    }
    if (*lineUsed >= 128) {
      text += "\r\n";
      *lineUsed = 0;
    }
  }
  return text;
}

// One data line up to its first NUL; false for an escape with nothing (or
// a line end) after it on the line.
inline bool YencDecodeLine(const std::string& line, std::vector<uint8_t>* out) {
  for (size_t i = 0; i < line.size() && line[i] != '\0'; ++i) {
    const char c = line[i];
    if (c == '\r' || c == '\n') continue;
    if (c != '=') {
      out->push_back(static_cast<uint8_t>(c - 42));
      continue;
    }
    if (i + 1 == line.size() || line[i + 1] == '\0' || line[i + 1] == '\r' || line[i + 1] == '\n')
      return false;
    out->push_back(static_cast<uint8_t>(line[++i] - 64 - 42));
  }
  return true;
}

}  // namespace fe::reference
