// Which bytes the quoted-printable encoder writes as they are, shared by
// the portable encoder and its vector kernel.
#pragma once

#include <array>
#include <string_view>

namespace fe::codecs {

// Printable characters that are escaped all the same; the one place to
// change the set.
inline constexpr std::string_view kQpAlwaysEscaped = "!\"#$@[\\]^`{|}=";

inline constexpr auto kQpWrittenAsIs = [] {
  std::array<bool, 256> table{};
  for (int c = 32; c <= 126; ++c)
    table[c] = true;
  for (char c : kQpAlwaysEscaped)
    table[static_cast<uint8_t>(c)] = false;
  return table;
}();

}  // namespace fe::codecs
