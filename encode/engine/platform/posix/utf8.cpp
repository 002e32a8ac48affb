// UTF-8 as Windows' code page 65001 converts it: unpaired surrogates become
// U+FFFD on the way out; on the way in, each maximal invalid subsequence
// becomes one U+FFFD, or fails the whole call in strict mode.
#include <cstdint>

#include "platform/posix/unicode_transforms.h"

namespace fe::platform {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t u) {
  return u >= 0xD800 && u <= 0xDBFF;
}
bool IsLowSurrogate(char16_t u) {
  return u >= 0xDC00 && u <= 0xDFFF;
}

void PutCodePoint(uint32_t cp, BoundedWriter<char16_t>& out) {
  if (cp < 0x10000) {
    out.Put(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.Put(static_cast<char16_t>(0xD800 | (cp >> 10)));
    out.Put(static_cast<char16_t>(0xDC00 | (cp & 0x3FF)));
  }
}

// The lead byte's payload, how many continuation bytes follow and the range
// the first of them must lie in (which rules out overlong forms, surrogates
// and values above U+10FFFF).
struct LeadByte {
  int continuations;  // -1: the byte cannot start a sequence
  uint8_t payload;
  uint8_t low;
  uint8_t high;
};

LeadByte ClassifyLead(uint8_t b) {
  if (b >= 0xC2 && b <= 0xDF) return {1, static_cast<uint8_t>(b & 0x1F), 0x80, 0xBF};
  if (b == 0xE0) return {2, 0x00, 0xA0, 0xBF};
  if (b == 0xED) return {2, 0x0D, 0x80, 0x9F};
  if (b >= 0xE1 && b <= 0xEF) return {2, static_cast<uint8_t>(b & 0x0F), 0x80, 0xBF};
  if (b == 0xF0) return {3, 0x00, 0x90, 0xBF};
  if (b >= 0xF1 && b <= 0xF3) return {3, static_cast<uint8_t>(b & 0x07), 0x80, 0xBF};
  if (b == 0xF4) return {3, 0x04, 0x80, 0x8F};
  return {-1, 0, 0, 0};
}

}  // namespace

bool Utf16ToUtf8(std::u16string_view text, bool failOnInvalid, BoundedWriter<char>& out) {
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t cp = text[i];
    if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    } else if (IsHighSurrogate(text[i]) || IsLowSurrogate(text[i])) {
      if (failOnInvalid) return false;
      cp = kReplacement;
    }
    if (cp < 0x80) {
      out.Put(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.Put(static_cast<char>(0xC0 | (cp >> 6)));
      out.Put(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.Put(static_cast<char>(0xE0 | (cp >> 12)));
      out.Put(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.Put(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.Put(static_cast<char>(0xF0 | (cp >> 18)));
      out.Put(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.Put(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.Put(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return true;
}

bool Utf8ToUtf16(std::string_view text, bool failOnInvalid, BoundedWriter<char16_t>& out) {
  size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<uint8_t>(text[i]);
    if (lead < 0x80) {
      out.Put(lead);
      ++i;
      continue;
    }
    const LeadByte kind = ClassifyLead(lead);
    size_t next = i + 1;
    uint32_t cp = kind.payload;
    bool valid = kind.continuations > 0;
    for (int k = 0; valid && k < kind.continuations; ++k) {
      const uint8_t low = k == 0 ? kind.low : 0x80;
      const uint8_t high = k == 0 ? kind.high : 0xBF;
      if (next >= text.size()) {
        valid = false;
        break;
      }
      const auto b = static_cast<uint8_t>(text[next]);
      if (b < low || b > high) {
        valid = false;
        break;
      }
      cp = (cp << 6) | (b & 0x3F);
      ++next;
    }
    if (!valid) {
      if (failOnInvalid) return false;
      out.Put(kReplacement);
    } else {
      PutCodePoint(cp, out);
    }
    i = next;
  }
  return true;
}

}  // namespace fe::platform
