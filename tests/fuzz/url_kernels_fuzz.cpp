// URL encoding and decoding as this processor runs them (the vector
// kernels where it has them) against the one-at-a-time references: every
// count and output byte identical at a capacity the input chooses. Choice
// bytes: bit 0 of the first picks decoding; the next two seed the
// capacity; the rest is the data or the text.
#include <random>
#include <vector>

#include "chunk_differential.h"
#include "file_encoder.h"
#include "reference/url_reference.h"

namespace {

// Room for everything, or a stop anywhere before it.
int32_t Capacity(std::mt19937& random, size_t room) {
  return random() % 2 ? static_cast<int32_t>(room)
                      : 1 + static_cast<int32_t>(random() % (room + 1));
}

void Encode(const std::vector<uint8_t>& rest, bool, std::mt19937& random) {
  static const uint8_t kNothing = 0;
  const uint8_t* bytes = rest.empty() ? &kNothing : rest.data();
  const auto length = static_cast<int32_t>(rest.size());
  const int32_t capacity = Capacity(random, 3 * rest.size() + 1);
  std::vector<char> fast(static_cast<size_t>(capacity) + 8, 'x'), plain = fast;
  fe::fuzz::Check(UrlEncode(bytes, length, fast.data(), capacity) ==
                  fe::reference::UrlEncode(bytes, length, plain.data(), capacity));
  fe::fuzz::Check(fast == plain);
}

void Decode(const std::vector<uint8_t>& rest, std::mt19937& random) {
  const char text[1] = {0};
  const char* chars = rest.empty() ? text : reinterpret_cast<const char*>(rest.data());
  const auto length = static_cast<int32_t>(rest.size());
  const int32_t capacity = Capacity(random, rest.size() + 1);
  std::vector<uint8_t> fast(static_cast<size_t>(capacity) + 8, 0xA5), plain = fast;
  fe::fuzz::Check(UrlDecode(chars, length, fast.data(), capacity) ==
                  fe::reference::UrlDecode(chars, length, plain.data(), capacity));
  fe::fuzz::Check(fast == plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::RunCoderPair(data, size, Encode, Decode);
  return 0;
}
