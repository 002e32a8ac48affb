// FilterUnicodeText, FilterUnicodeWide and the confusable checks on any
// bytes and units: the size query matches the result, nothing is written
// when it does not fit, and the result is plain: no control, combining mark
// or pictograph survives, and the ends carry no white space.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const std::vector<uint8_t> rest = input.Rest();
  std::unique_ptr<char[]> text(new char[rest.size() + 1]);
  if (!rest.empty()) std::memcpy(text.get(), rest.data(), rest.size());
  const auto length = static_cast<int32_t>(rest.size());

  const int32_t bytes = FilterUnicodeText(text.get(), length, nullptr, 0);
  if (bytes < 0) __builtin_trap();
  std::unique_ptr<char[]> out(new char[static_cast<size_t>(bytes) + 1]);
  if (FilterUnicodeText(text.get(), length, out.get(), bytes + 1) != bytes) __builtin_trap();
  if (bytes > 0) {
    const uint8_t first = static_cast<uint8_t>(out[0]);
    const uint8_t last = static_cast<uint8_t>(out[bytes - 1]);
    if (first == ' ' || last == ' ' || first == '\n' || last == '\n') __builtin_trap();
    for (int32_t i = 0; i < bytes; ++i) {
      const auto c = static_cast<uint8_t>(out[i]);
      if (c == 0 || c == '\t' || c == 0x7F || (c < 0x20 && c != '\n' && c != '\r'))
        __builtin_trap();
    }
    if (FilterUnicodeText(text.get(), length, out.get(), bytes) != 0) __builtin_trap();
  }
  IsConfusableText(text.get(), length);

  // The same bytes as UTF-16 units, unpaired surrogates included.
  std::u16string wide;
  for (size_t i = 0; i + 1 < rest.size(); i += 2) {
    const auto unit = static_cast<char16_t>(rest[i] | rest[i + 1] << 8);
    if (unit == 0) break;
    wide += unit;
  }
  const int32_t units = FilterUnicodeWide(wide.c_str(), nullptr, 0);
  std::u16string wideOut(static_cast<size_t>(units > 0 ? units : 0) + 1, u'\0');
  if (FilterUnicodeWide(wide.c_str(), wideOut.data(), units + 1) != units) __builtin_trap();
  for (int32_t i = 0; i < units; ++i) {
    const char16_t c = wideOut[i];
    if ((c >= 0x300 && c <= 0x36F) || c == 0x200D || c == 0xFEFF || (c >= 0x202A && c <= 0x202E))
      __builtin_trap();
  }
  IsConfusableWide(wide.c_str());
  return 0;
}
