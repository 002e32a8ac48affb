// The 32-bit word operations the block functions share.
#pragma once

#include <cstdint>

namespace fe::digest {

inline uint32_t RotateLeft(uint32_t x, int n) {
  return (x << n) | (x >> (32 - n));
}

inline uint32_t RotateRight(uint32_t x, int n) {
  return (x >> n) | (x << (32 - n));
}

inline uint32_t LoadBig(const uint8_t* p) {
  return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

inline uint32_t LoadLittle(const uint8_t* p) {
  return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

}  // namespace fe::digest
