// Code point by code point through UTF-16 and UTF-8 text, for the Unicode
// filter and the confusable check.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fe::text {

// Returned for a unit or byte that begins no well-formed character.
inline constexpr uint32_t kNoCodePoint = 0xFFFFFFFF;

// The code point at `at`, advancing past it; an unpaired surrogate is
// kNoCodePoint and takes one unit.
inline uint32_t NextCodePoint(std::u16string_view text, size_t& at) {
  const char16_t unit = text[at++];
  if (unit < 0xD800 || unit > 0xDFFF) return unit;
  if (unit <= 0xDBFF && at < text.size() && text[at] >= 0xDC00 && text[at] <= 0xDFFF) {
    return 0x10000 + ((static_cast<uint32_t>(unit) - 0xD800) << 10) + (text[at++] - 0xDC00);
  }
  return kNoCodePoint;
}

// The code point at `at` in strict UTF-8 (no overlong forms, surrogates or
// values above U+10FFFF), advancing past it; anything else, and a zero byte,
// is kNoCodePoint and takes one byte.
inline uint32_t NextCodePoint(std::string_view text, size_t& at) {
  const auto lead = static_cast<uint8_t>(text[at++]);
  if (lead != 0 && lead < 0x80) return lead;
  int more;
  uint32_t value;
  uint32_t minimum;
  if (lead >= 0xC2 && lead <= 0xDF) {
    more = 1, value = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2, value = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    more = 3, value = lead & 0x07, minimum = 0x10000;
  } else {
    return kNoCodePoint;
  }
  if (text.size() - at < static_cast<size_t>(more)) return kNoCodePoint;
  for (int i = 0; i < more; ++i) {
    const auto next = static_cast<uint8_t>(text[at + i]);
    if ((next & 0xC0) != 0x80) return kNoCodePoint;
    value = (value << 6) | (next & 0x3F);
  }
  if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
    return kNoCodePoint;
  at += more;
  return value;
}

inline void AppendCodePoint(std::u16string& text, uint32_t c) {
  if (c < 0x10000) {
    text += static_cast<char16_t>(c);
  } else {
    text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  }
}

inline void AppendCodePoint(std::string& text, uint32_t c) {
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += static_cast<char>(0xC0 | (c >> 6));
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    text += static_cast<char>(0xE0 | (c >> 12));
    text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    text += static_cast<char>(0xF0 | (c >> 18));
    text += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Whole texts from one form to the other; what cannot be decoded is left
// out.
template <typename Out, typename In>
Out ConvertCodePoints(In text) {
  Out converted;
  for (size_t at = 0; at < text.size();) {
    const uint32_t c = NextCodePoint(text, at);
    if (c != kNoCodePoint) AppendCodePoint(converted, c);
  }
  return converted;
}

}  // namespace fe::text
