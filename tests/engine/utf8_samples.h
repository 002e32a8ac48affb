// Generated UTF-8 for the validation tests: well-formed text with every
// sequence length and range end, and random damage to it.
#pragma once

#include <iterator>
#include <random>
#include <string>

#include "test_support.h"

namespace fe::test {

// Well-formed text of `size` bytes or a little more: ASCII runs and
// characters of every length, the range ends included.
inline Bytes MixedUtf8Text(size_t size, std::mt19937& random) {
  static const char* const kPieces[] = {"plain words ",
                                        "\xc2\x80",
                                        "\xdf\xbf",
                                        "\xc3\xa9",
                                        "\xe0\xa0\x80",
                                        "\xed\x9f\xbf",
                                        "\xee\x80\x80",
                                        "\xef\xbf\xbf",
                                        "\xe4\xb8\xad\xe6\x96\x87",
                                        "\xf0\x90\x80\x80",
                                        "\xf4\x8f\xbf\xbf",
                                        "\xf0\x9f\x98\x80",
                                        "x",
                                        "\r\n"};
  Bytes text;
  while (text.size() < size) {
    const std::string piece = kPieces[random() % std::size(kPieces)];
    text.insert(text.end(), piece.begin(), piece.end());
  }
  return text;
}

// Random damage: a byte replaced, a byte dropped, or a lead byte put in.
inline void DamageUtf8(Bytes& text, std::mt19937& random) {
  if (text.empty()) return;
  const size_t at = random() % text.size();
  switch (random() % 3) {
    case 0:
      text[at] = static_cast<uint8_t>(1 + random() % 255);
      break;
    case 1:
      text.erase(text.begin() + static_cast<std::ptrdiff_t>(at));
      break;
    default:
      text[at] = static_cast<uint8_t>(0xC0 + random() % 0x40);
  }
}

}  // namespace fe::test
