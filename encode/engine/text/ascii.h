// Character classes of the text filters: the C library's "C" locale, written
// out so that no filter depends on the process's locale.
#pragma once

#include <cstdint>
#include <string_view>

namespace fe::text {

constexpr bool IsSpace(uint8_t c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool IsPrint(uint8_t c) {
  return c >= 0x20 && c <= 0x7E;
}
constexpr bool IsDigit(uint8_t c) {
  return c >= '0' && c <= '9';
}
constexpr bool IsAlpha(uint8_t c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsAlnum(uint8_t c) {
  return IsAlpha(c) || IsDigit(c);
}
constexpr char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// The value of a decimal or hexadecimal digit, -1 for anything else.
constexpr int DigitValue(char c) {
  if (IsDigit(static_cast<uint8_t>(c))) return c - '0';
  const char lower = ToLower(c);
  if (lower >= 'a' && lower <= 'f') return lower - 'a' + 10;
  return -1;
}

constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (ToLower(a[i]) != ToLower(b[i])) return false;
  }
  return true;
}

constexpr bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualIgnoringCase(text.substr(0, prefix.size()), prefix);
}

constexpr std::string_view TrimSpace(std::string_view text) {
  while (!text.empty() && IsSpace(static_cast<uint8_t>(text.front())))
    text.remove_prefix(1);
  while (!text.empty() && IsSpace(static_cast<uint8_t>(text.back())))
    text.remove_suffix(1);
  return text;
}

}  // namespace fe::text
