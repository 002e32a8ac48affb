// The Z85 alphabet and its value table, shared by the portable coder and
// its vector kernels.
#pragma once

#include <array>
#include <cstdint>

#include "codecs/codec_internal.h"

namespace fe::codecs {

inline constexpr char kZ85Alphabet[] =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-:+=^!/*?&<>()[]{}@%$#";
inline constexpr uint8_t kZ85NotInAlphabet = 0xFF;

inline constexpr std::array<uint8_t, 256> kZ85ValueOf =
    InverseAlphabet(kZ85Alphabet, kZ85NotInAlphabet);

}  // namespace fe::codecs
