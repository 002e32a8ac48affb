// EncodeBuffer with every encoding and flag into a heap buffer of exactly
// outputSize bytes: whatever the size, nothing is written past it, and a
// success is a NUL-terminated text of the returned length.
#include <cstring>
#include <memory>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t choice = input.Take();
  const uint32_t encoding = choice % 10;
  const uint32_t flags = encoding | (choice & 0x40 ? dataEncodeWrapLines : 0) |
                         (choice & 0x80 ? fileEncodeCompressed : 0);
  const int32_t outputSize = 1 + input.Take16() % 2048;
  std::vector<uint8_t> bytes = input.Rest();
  if (bytes.size() > 1024) bytes.resize(1024);
  if (bytes.size() % 2) bytes.push_back(0);  // whole UTF-16 units for rows 4 and 5
  const bool unicode = encoding == dataEncodeUTF7 || encoding == dataEncodeUTF8;
  const auto length = static_cast<int32_t>(unicode ? bytes.size() / 2 : bytes.size());
  std::unique_ptr<char[]> output(new char[static_cast<size_t>(outputSize)]);
  const int32_t n = EncodeBuffer(bytes.empty() ? "" : static_cast<const void*>(bytes.data()),
                                 length, output.get(), outputSize, flags);
  if (n > outputSize) __builtin_trap();
  if (n >= 0 && n < outputSize &&
      strnlen(output.get(), static_cast<size_t>(outputSize)) != static_cast<size_t>(n)) {
    __builtin_trap();
  }
  return 0;
}
