// The vector kernels behind the bodies of uuencoded lines, chosen once per
// process for this processor and FE_CPU. Line lengths, line ends and the
// short last group stay with the file coders.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

struct UuKernels {
  // Writes the four characters of each of the `groups` 3-byte groups of
  // `in`, touching nothing outside them.
  void (*encodeGroups)(const uint8_t* in, size_t groups, char* out);
  // Writes the three bytes of each of the `groups` 4-character groups of
  // `text`, every character giving the six bits of (c - 32), whatever it is.
  void (*decodeGroups)(const uint8_t* text, size_t groups, uint8_t* out);
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const UuKernels* ChosenUuKernels();

}  // namespace fe::codecs
