// FilterHtmlText and FilterHtmlWide on any bytes: nothing is read past the
// input or written past the capacity, the size query agrees with a roomy
// run, and a small capacity gives a prefix-length result within it.
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
  // Exactly the payload's bytes on the heap, so that an over-read is caught.
  std::unique_ptr<char[]> html(new char[rest.size() + 1]);
  if (!rest.empty()) std::memcpy(html.get(), rest.data(), rest.size());
  const auto length = static_cast<int32_t>(rest.size());

  const int32_t query = FilterHtmlText(html.get(), length, nullptr, 0);
  if (length == 0) {
    if (query != 0 || EngineGetLastError() != 232) __builtin_trap();
    return 0;
  }
  const size_t roomy = rest.size() * 4 + 512;
  std::unique_ptr<char[]> out(new char[roomy]);
  const int32_t written =
      FilterHtmlText(html.get(), length, out.get(), static_cast<int32_t>(roomy));
  if (written < 0 || static_cast<size_t>(written) >= roomy || out[written] != 0) __builtin_trap();
  // The query runs into a buffer a little larger than the input; where the
  // result fits there, it is the same length.
  if (written + 1 < ((length + 128) / 256 + 1) * 256 && query != written) __builtin_trap();

  std::unique_ptr<char[]> tight(new char[small + 1]);
  const int32_t cut = FilterHtmlText(html.get(), length, tight.get(), small + 1);
  if (cut < 0 || cut > small) __builtin_trap();

  // The wide form over the same bytes taken as Latin-1 units.
  std::u16string wide(rest.begin(), rest.end());
  wide = wide.substr(0, wide.find(u'\0'));
  const int32_t units = FilterHtmlWide(wide.c_str(), nullptr, 0);
  std::u16string wideOut(static_cast<size_t>(units > 0 ? units : 0) + 1, u'\0');
  if (units > 0 && FilterHtmlWide(wide.c_str(), wideOut.data(), units + 1) != units)
    __builtin_trap();
  return 0;
}
