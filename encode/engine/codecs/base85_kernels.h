// The vector kernel the Base85 decoder runs over whole groups, chosen once
// per process for this processor and FE_CPU. 'z', white space and every
// other character outside the digits stay with the portable decoder.
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
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const Base85Kernels* ChosenBase85Kernels();

}  // namespace fe::codecs
