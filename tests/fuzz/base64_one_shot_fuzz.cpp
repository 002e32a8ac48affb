// Base64Decode on any text into a buffer of exactly the size it is told.
#include <memory>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const int32_t outputSize = 1 + input.Take16() % 4096;
  const std::string text = input.RestAsText();
  std::unique_ptr<uint8_t[]> output(new uint8_t[static_cast<size_t>(outputSize)]);
  const int32_t n = Base64Decode(text.c_str(), output.get(), outputSize);
  if (n > outputSize) __builtin_trap();
  return 0;
}
