// Which bytes URL encoding writes as they are, shared by the portable
// encoder and its vector kernel.
#pragma once

#include <array>

namespace fe::codecs {

// Only letters, digits and '~' stay as they are: '-', '.' and '_' are
// escaped too, stricter than the usual unreserved set, as callers expect.
inline constexpr auto kUrlWrittenAsIs = [] {
  std::array<bool, 256> table{};
  for (int c = '0'; c <= '9'; ++c)
    table[c] = true;
  for (int c = 'A'; c <= 'Z'; ++c)
    table[c] = true;
  for (int c = 'a'; c <= 'z'; ++c)
    table[c] = true;
  table['~'] = true;
  return table;
}();

}  // namespace fe::codecs
