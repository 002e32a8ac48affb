// CRC-32 (the reflected polynomial 0xEDB88320 of zlib, PNG and yEnc) on
// the raw register: start from 0xFFFFFFFF and invert at the end.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::digest {

// The register after `size` more bytes, a byte at a time through a table.
uint32_t Crc32Bytes(uint32_t crc, const uint8_t* data, size_t size);

// The same, with the carry-less multiplication kernel where the processor
// has one (chosen once; FE_CPU=scalar keeps the table).
uint32_t Crc32Update(uint32_t crc, const uint8_t* data, size_t size);

}  // namespace fe::digest
