// The vector kernel Utf8Validate runs over the bulk of its input, chosen
// once per process for this processor and FE_CPU.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::text {

// Returns how many leading bytes are proven to be whole well-formed
// sequences; the automaton continues from there.
using Utf8PrefixKernel = size_t (*)(const uint8_t* bytes, size_t length);

// Null when no kernel fits this processor or FE_CPU=scalar.
Utf8PrefixKernel ChosenUtf8PrefixKernel();

}  // namespace fe::text
