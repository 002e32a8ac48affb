// The vector kernels of the Base85 and Z85 coders, chosen once per process
// for this processor and FE_CPU. Base85's 'z', white space and every other
// character outside the digits stay with the portable decoder.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

struct Base85Kernels {
  // Decodes groups of five digits ('!' to 'u') from the `length`
  // characters of `text`, at most `maxGroups`, stopping before the first
  // group that holds any other character; each group's value wraps modulo
  // 2^32 as the decoder's does. Returns how many groups it wrote (four bytes
  // each, five characters consumed each).
  size_t (*decodeGroups)(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);
  // Encodes `groups` whole 4-byte groups, five digits each and 'z' for an
  // all-zero group. Returns the characters written; the caller leaves room
  // for five a group.
  size_t (*encodeGroups)(const uint8_t* in, size_t groups, char* out);
  // The same two for Z85: its alphabet, no shorthand, five characters for
  // every group; decoding stops before the first group with a character
  // outside the alphabet.
  size_t (*decodeZ85Groups)(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);
  void (*encodeZ85Groups)(const uint8_t* in, size_t groups, char* out);
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const Base85Kernels* ChosenBase85Kernels();

}  // namespace fe::codecs
