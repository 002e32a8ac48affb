// Hexadecimal digits as the escaping codecs write and read them.
#pragma once

#include <array>
#include <cstdint>

namespace fe::codecs {

inline constexpr char kUpperHexDigits[] = "0123456789ABCDEF";
inline constexpr uint8_t kNotHex = 127;

// '0'-'9', 'A'-'F' and 'a'-'f' to their values; everything else kNotHex.
inline constexpr auto kHexValue = [] {
  std::array<uint8_t, 256> table{};
  table.fill(kNotHex);
  for (int i = 0; i < 10; ++i)
    table['0' + i] = static_cast<uint8_t>(i);
  for (int i = 0; i < 6; ++i) {
    table['A' + i] = static_cast<uint8_t>(10 + i);
    table['a' + i] = static_cast<uint8_t>(10 + i);
  }
  return table;
}();

// Writes c as two upper-case hex digits.
inline void PutHexByte(uint8_t c, char* out) {
  out[0] = kUpperHexDigits[c >> 4];
  out[1] = kUpperHexDigits[c & 15];
}

}  // namespace fe::codecs
