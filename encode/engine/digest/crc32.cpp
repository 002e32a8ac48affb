// The table form of CRC-32 and the choice of kernel.
#include "digest/crc32.h"

#include <array>

#include "cpu/cpu_level.h"

#if defined(__x86_64__) || defined(__i386__)
#include "digest/x86/kernels.h"
#define FE_CRC_X86 1
#endif

namespace fe::digest {

namespace {

constexpr auto kTable = [] {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t crc = i;
    for (int k = 0; k < 8; ++k)
      crc = crc & 1 ? (crc >> 1) ^ 0xEDB88320u : crc >> 1;
    table[i] = crc;
  }
  return table;
}();

using Crc32Function = uint32_t (*)(uint32_t, const uint8_t*, size_t);

Crc32Function Fastest() {
#ifdef FE_CRC_X86
  if (cpu::ChosenLevel() >= cpu::Level::kSse && cpu::SupportedExtras().pclmul) {
    return x86::Crc32Pclmul;
  }
#endif
  return Crc32Bytes;
}

}  // namespace

uint32_t Crc32Bytes(uint32_t crc, const uint8_t* data, size_t size) {
  for (size_t i = 0; i < size; ++i)
    crc = kTable[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return crc;
}

uint32_t Crc32Update(uint32_t crc, const uint8_t* data, size_t size) {
  static const Crc32Function function = Fastest();
  return function(crc, data, size);
}

}  // namespace fe::digest
