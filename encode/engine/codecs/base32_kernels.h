// The vector kernels the Base32 coders run over whole 5-byte groups,
// chosen once per process for this processor and FE_CPU. Line breaks,
// capacity stops, padding, held bits and every character outside the
// alphabet stay with the portable coders.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

struct Base32Kernels {
  // Writes the eight characters of each of the `groups` 5-byte groups of
  // `in`, reading and writing nothing outside them; returns how many
  // leading groups it wrote.
  size_t (*encodeGroups)(const uint8_t* in, size_t groups, char* out);
  // Decodes groups of eight alphabet characters (either case) from the
  // `length` characters of `text`, at most `maxGroups`, stopping before the
  // first group that holds any other character; returns how many groups it
  // wrote (five bytes each, eight characters consumed each).
  size_t (*decodeGroups)(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const Base32Kernels* ChosenBase32Kernels();

}  // namespace fe::codecs
