// CompareFiles with any options, digest text and second path: never a read
// outside the texts, and a success only where the digest or the files
// really agree.
#include <cstdio>
#include <string>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string file = [] {
    char path[] = "/tmp/fe_compare_fuzz_XXXXXX";
    const int fd = mkstemp(path);
    FILE* out = fdopen(fd, "wb");
    std::fputs("abc", out);
    std::fclose(out);
    return std::string(path);
  }();
  fe::fuzz::FuzzInput input(data, size);
  const uint32_t options = input.Take16() | (input.Take() & 1u) << 16;
  const uint8_t which = input.Take();
  const std::string text = input.RestAsText();
  // The text is the digest, or the second path, or both at once.
  const char* digest = (which & 1) ? text.c_str() : nullptr;
  const char* second = (which & 2) ? text.c_str() : ((which & 4) ? file.c_str() : nullptr);
  const int same = CompareFiles(file.c_str(), second, options, digest);
  if (same && EngineGetLastError() != 0) __builtin_trap();
  // A digest that matched must be one of the three digests of "abc".
  if (same && digest != nullptr && second != file.c_str() &&
      text.find("abc") == std::string::npos && text.size() < 32) {
    __builtin_trap();
  }
  return 0;
}
