// Vector kernels of the text functions. Only the dispatch unit names them,
// after cpuid.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::text::x86 {

// The length of the longest prefix of `bytes`, starting in the validator's
// accept state, that the kernel has proven to be whole well-formed UTF-8
// sequences; the automaton goes on from there (and finds any error itself).
size_t Utf8WellFormedPrefixAvx2(const uint8_t* bytes, size_t length);

}  // namespace fe::text::x86
