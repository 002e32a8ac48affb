// FilterMarkdownText and FilterMarkdownWide on any bytes: the length is the
// same whatever the capacity, writes stay within it, and what fits is a
// prefix of the full result.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const int32_t small = input.Take();
  const std::vector<uint8_t> rest = input.Rest();
  std::unique_ptr<char[]> markdown(new char[rest.size() + 1]);
  if (!rest.empty()) std::memcpy(markdown.get(), rest.data(), rest.size());
  const auto length = static_cast<int32_t>(rest.size());

  const int32_t full = FilterMarkdownText(markdown.get(), length, nullptr, 0);
  if (full < 0) __builtin_trap();
  std::unique_ptr<char[]> out(new char[static_cast<size_t>(full) + 1]);
  if (FilterMarkdownText(markdown.get(), length, out.get(), full + 1) != full) __builtin_trap();
  std::unique_ptr<char[]> tight(new char[small + 1]);
  if (FilterMarkdownText(markdown.get(), length, tight.get(), small + 1) != full) __builtin_trap();
  const size_t kept = std::strlen(tight.get());
  if (kept > static_cast<size_t>(small) || std::memcmp(tight.get(), out.get(), kept) != 0)
    __builtin_trap();

  std::u16string wide(rest.begin(), rest.end());
  wide = wide.substr(0, wide.find(u'\0'));
  const int32_t units = FilterMarkdownWide(wide.c_str(), nullptr, 0);
  std::u16string wideOut(static_cast<size_t>(units > 0 ? units : 0) + 1, u'\0');
  if (units > 0 && FilterMarkdownWide(wide.c_str(), wideOut.data(), units + 1) != units)
    __builtin_trap();
  return 0;
}
