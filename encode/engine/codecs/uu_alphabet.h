// The uuencode alphabet: each 6-bit value v as the character 32 + v, except
// 0, which is written as the grave accent, never as a space.
#pragma once

#include <array>

namespace fe::codecs {

inline constexpr std::array<char, 65> kUuAlphabet = [] {
  std::array<char, 65> alphabet{};
  alphabet[0] = '`';
  for (int v = 1; v < 64; ++v)
    alphabet[v] = static_cast<char>(32 + v);
  return alphabet;
}();

}  // namespace fe::codecs
