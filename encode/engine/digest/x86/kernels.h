// Block functions for x86 processors with the SHA extensions (SHA-NI with
// SSSE3 and SSE4.1) and the carry-less multiplication CRC-32. Only the dispatch unit calls them,
// after cpuid.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::digest::x86 {

void Sha1BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count);
void Sha256BlocksShani(uint32_t* state, const uint8_t* blocks, size_t count);

// CRC-32 with PCLMULQDQ (and SSE4.1), same contract as Crc32Bytes.
uint32_t Crc32Pclmul(uint32_t crc, const uint8_t* data, size_t size);

}  // namespace fe::digest::x86
