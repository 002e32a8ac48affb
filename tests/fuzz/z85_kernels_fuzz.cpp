// The Z85 coders as this processor runs them (the vector kernels where it
// has them) against the one-group-at-a-time references: every count and
// output byte identical at a capacity the input chooses. Choice bytes: bit
// 0 of the first picks decoding; the next two seed the capacity; the rest,
// cut to whole groups, is the data or the text (up to its first NUL).
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "file_encoder.h"
#include "reference/z85_reference.h"

namespace {

// Room for every group, or a stop anywhere before it.
int32_t Capacity(std::mt19937& random, size_t room) {
  return random() % 2 ? static_cast<int32_t>(room)
                      : 1 + static_cast<int32_t>(random() % (room + 1));
}

void Encode(const std::vector<uint8_t>& rest, bool, std::mt19937& random) {
  const auto length = static_cast<int32_t>(rest.size() - rest.size() % 4);
  if (length == 0) return;
  const int32_t capacity = Capacity(random, rest.size() / 4 * 5 + 1);
  std::vector<char> fast(static_cast<size_t>(capacity) + 8, 'x'), plain = fast;
  fe::fuzz::Check(Z85Encode(rest.data(), length, fast.data(), capacity) ==
                  fe::reference::Z85Encode(rest.data(), length, plain.data(), capacity));
  fe::fuzz::Check(fast == plain);
}

void Decode(const std::vector<uint8_t>& rest, std::mt19937& random) {
  std::string text(rest.begin(), rest.end());
  text.resize(std::strlen(text.c_str()));
  text.resize(text.size() - text.size() % 5);
  if (text.empty()) return;
  const int32_t capacity = Capacity(random, text.size() / 5 * 4);
  std::vector<uint8_t> fast(static_cast<size_t>(capacity) + 8, 0xA5), plain = fast;
  fe::fuzz::Check(Z85Decode(text.c_str(), fast.data(), capacity) ==
                  fe::reference::Z85Decode(text.c_str(), plain.data(), capacity));
  fe::fuzz::Check(fast == plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::RunCoderPair(data, size, Encode, Decode);
  return 0;
}
