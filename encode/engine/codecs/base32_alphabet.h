// The Base32 alphabet and the decoder's value table, shared by the
// portable coders and their vector kernels.
#pragma once

#include <array>
#include <cstdint>

#include "codecs/codec_internal.h"

namespace fe::codecs {

inline constexpr char kBase32Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
inline constexpr uint8_t kBase32NotInAlphabet = 0xFF;

// Decoding accepts the letters in either case.
inline constexpr std::array<uint8_t, 256> kBase32ValueOf = [] {
  auto table = InverseAlphabet(kBase32Alphabet, kBase32NotInAlphabet);
  for (int c = 'a'; c <= 'z'; ++c)
    table[c] = table[c - 'a' + 'A'];
  return table;
}();

}  // namespace fe::codecs
