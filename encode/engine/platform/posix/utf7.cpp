// UTF-7 (RFC 2152) as Windows' code page 65000 writes and reads it, so that
// the Linux build gives the same bytes as the Windows one:
// - Only the RFC's set D, space, TAB, CR, LF and NUL are written directly;
//   the optional direct characters (! " # ...) are encoded.
// - '+' is written "+-"; every encoded run ends with an explicit '-'.
// - When reading, any byte outside the modified Base64 alphabet ends a run;
//   a '-' ending it is absorbed. Leftover bits of a run are dropped, except
//   when a byte from 0x80 up ends it: then they carry into the next run.
//   Bytes outside runs become the code unit of the same value.
#include <array>
#include <cstdint>

#include "platform/posix/unicode_transforms.h"

namespace fe::platform {

namespace {

constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr auto kBase64Values = [] {
  std::array<int8_t, 128> values{};
  values.fill(-1);
  for (int i = 0; i < 64; ++i)
    values[static_cast<uint8_t>(kBase64Alphabet[i])] = static_cast<int8_t>(i);
  return values;
}();

constexpr auto kDirect = [] {
  std::array<bool, 128> direct{};
  for (char c : std::string_view("\t\n\r '(),-./:?"))
    direct[static_cast<uint8_t>(c)] = true;
  direct[0] = true;
  for (int c = '0'; c <= '9'; ++c)
    direct[c] = true;
  for (int c = 'A'; c <= 'Z'; ++c)
    direct[c] = true;
  for (int c = 'a'; c <= 'z'; ++c)
    direct[c] = true;
  return direct;
}();

bool IsDirect(char16_t unit) {
  return unit < 128 && kDirect[unit];
}

}  // namespace

void Utf16ToUtf7(std::u16string_view text, BoundedWriter<char>& out) {
  size_t i = 0;
  while (i < text.size()) {
    const char16_t unit = text[i];
    if (unit == u'+') {
      out.Put('+');
      out.Put('-');
      ++i;
      continue;
    }
    if (IsDirect(unit)) {
      out.Put(static_cast<char>(unit));
      ++i;
      continue;
    }
    out.Put('+');
    uint32_t bits = 0;
    int bitCount = 0;
    for (; i < text.size() && !IsDirect(text[i]) && text[i] != u'+'; ++i) {
      bits = (bits << 16) | text[i];
      bitCount += 16;
      while (bitCount >= 6) {
        bitCount -= 6;
        out.Put(kBase64Alphabet[(bits >> bitCount) & 63]);
      }
    }
    if (bitCount > 0) out.Put(kBase64Alphabet[(bits << (6 - bitCount)) & 63]);
    out.Put('-');
  }
}

void Utf7ToUtf16(std::string_view text, BoundedWriter<char16_t>& out) {
  uint32_t bits = 0;
  int bitCount = 0;
  size_t i = 0;
  while (i < text.size()) {
    const auto c = static_cast<uint8_t>(text[i]);
    if (c != '+') {
      out.Put(c);
      ++i;
      continue;
    }
    if (++i >= text.size()) break;
    if (text[i] == '-') {
      out.Put(u'+');
      ++i;
      continue;
    }
    while (i < text.size()) {
      const auto d = static_cast<uint8_t>(text[i]);
      if (d == '-') {
        bitCount = 0;
        ++i;
        break;
      }
      if (d >= 0x80) break;  // the partial bits stay for the next run
      const int value = kBase64Values[d];
      if (value < 0) {
        bitCount = 0;
        break;
      }
      bits = (bits << 6) | static_cast<uint32_t>(value);
      bitCount += 6;
      if (bitCount >= 16) {
        bitCount -= 16;
        out.Put(static_cast<char16_t>(bits >> bitCount));
      }
      ++i;
    }
  }
}

}  // namespace fe::platform
