// Expand data on any bytes: measuring and expanding into a buffer of the
// measured size agree, and what was compressed expands back.
#include <cstring>
#include <memory>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 65536) return 0;
  const auto length = static_cast<int32_t>(size);
  uint32_t measured = 0;
  const bool measuredOk = InflateBuffer(data, length, nullptr, &measured);
  if (measuredOk && measured <= (1u << 22)) {
    std::unique_ptr<uint8_t[]> out(new uint8_t[measured + 1]);
    uint32_t expanded = measured + 1;
    if (!InflateBuffer(data, length, out.get(), &expanded) || expanded != measured) {
      __builtin_trap();
    }
  }
  // And the other way: compress the bytes, expand them back.
  uint32_t compressedSize = static_cast<uint32_t>(size) * 2 + 64;
  std::vector<uint8_t> compressed(compressedSize);
  if (!DeflateBuffer(data, length, compressed.data(), &compressedSize)) __builtin_trap();
  std::vector<uint8_t> back(size);
  uint32_t backSize = static_cast<uint32_t>(size);
  if (!InflateBuffer(compressed.data(), static_cast<int32_t>(compressedSize), back.data(),
                     &backSize) ||
      backSize != size || std::memcmp(back.data(), data, size) != 0) {
    __builtin_trap();
  }
  return 0;
}
