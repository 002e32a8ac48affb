// Utf8Validate on any bytes, with and without a count: the verdict is the
// one Python's strict decoder would give (checked here by a plain decoder
// of the same rules), and nothing is read past the bytes.
#include <cstring>
#include <memory>

#include "file_encoder.h"

namespace {

// Well-formed UTF-8 from the first byte to the end, one sequence at a time.
bool WellFormed(const uint8_t* p, size_t n) {
  for (size_t at = 0; at < n;) {
    const uint8_t lead = p[at];
    size_t extra = 0;
    uint32_t point = lead;
    if (lead >= 0x80) {
      if (lead < 0xC2 || lead > 0xF4) return false;
      extra = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
      point = lead & (0x3F >> extra);
      if (at + extra >= n) return false;
      for (size_t i = 1; i <= extra; ++i) {
        if ((p[at + i] & 0xC0) != 0x80) return false;
        point = point << 6 | (p[at + i] & 0x3F);
      }
      static const uint32_t kSmallest[4] = {0, 0x80, 0x800, 0x10000};
      if (point < kSmallest[extra] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
        return false;
      }
    }
    at += extra + 1;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A copy of exactly `size` bytes, so a read past them is caught.
  std::unique_ptr<uint8_t[]> bytes(new uint8_t[size + 1]);
  if (size > 0) std::memcpy(bytes.get(), data, size);
  bytes[size] = 0;
  const int valid = Utf8Validate(bytes.get(), static_cast<int32_t>(size));
  size_t n = strnlen(reinterpret_cast<const char*>(bytes.get()), size);
  size_t at = n >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF ? 3 : 0;
  const bool expected = n > 0 && WellFormed(bytes.get() + at, n - at);
  if ((valid != 0) != expected) __builtin_trap();
  // Counted up to its terminator, the verdict is the same.
  if ((Utf8Validate(bytes.get(), -1) != 0) != expected) __builtin_trap();
  return 0;
}
