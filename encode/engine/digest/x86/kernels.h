// Block functions for x86 processors with the SHA extensions (SHA-NI with
// SSSE3 and SSE4.1). Only the dispatch unit calls them, after cpuid.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::digest::x86 {

void Sha1BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count);
void Sha256BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count);

}  // namespace fe::digest::x86
