// The 4-byte / 5-digit group arithmetic shared by Base85 and Z85.
#pragma once

#include <cstdint>

namespace fe::codecs {

inline uint32_t ReadBigEndian32(const uint8_t* in) {
  return (uint32_t{in[0]} << 24) | (uint32_t{in[1]} << 16) | (uint32_t{in[2]} << 8) | in[3];
}

inline void WriteBigEndian32(uint32_t value, uint8_t* out) {
  out[0] = static_cast<uint8_t>(value >> 24);
  out[1] = static_cast<uint8_t>(value >> 16);
  out[2] = static_cast<uint8_t>(value >> 8);
  out[3] = static_cast<uint8_t>(value);
}

// The five base-85 digits of value, most significant first.
inline void SplitBase85(uint32_t value, uint8_t digits[5]) {
  for (int k = 4; k >= 0; --k) {
    digits[k] = static_cast<uint8_t>(value % 85);
    value /= 85;
  }
}

}  // namespace fe::codecs
