// DecodeBuffer in every encoding, with and without expansion, into an output
// buffer of exactly the size it is told: any text, never a write outside it.
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint32_t encoding = input.Take() % 10;
  const uint32_t flags = encoding | (input.Take() & 1 ? fileDecodeCompressed : 0);
  const int32_t outputSize = 1 + input.Take16() % 4096;
  const std::string text = input.RestAsText();
  // UTF-7 and UTF-8 count UTF-16 code units.
  const bool unicode = encoding == dataDecodeUTF7 || encoding == dataDecodeUTF8;
  std::vector<uint8_t> output(static_cast<size_t>(outputSize) * (unicode ? 2 : 1));
  const int32_t n = DecodeBuffer(text.c_str(), output.data(), outputSize, flags);
  if (n > outputSize) __builtin_trap();
  return 0;
}
