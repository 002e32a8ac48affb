// The Base64 chunk coders as this processor runs them (vector kernels where
// it has them) against the character-at-a-time machines: every count,
// output byte and state field identical, over chunk splits and capacities
// the input chooses. Choice bytes: direction and wrapping, then a seed for
// the splits; the rest is the data or the text.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"
#include "reference/base64_reference.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

void Encode(const std::vector<uint8_t>& data, bool wrap, std::mt19937& random) {
  Base64State fast{}, plain{};
  const auto length = static_cast<int32_t>(data.size());
  int32_t offset = 0;
  do {
    const int32_t piece = std::min<int32_t>(length - offset, 1 + random() % 600);
    const int32_t capacity = piece + piece / 3 + static_cast<int32_t>(random() % 12);
    std::vector<char> a(static_cast<size_t>(capacity) + 8, '#'), b = a;
    const int32_t na =
        Base64EncodeChunk(data.data() + offset, piece, a.data(), capacity, &fast, wrap);
    const int32_t nb = fe::reference::Base64EncodeChunk(data.data() + offset, piece, b.data(),
                                                        capacity, &plain, wrap);
    Check(na == nb && a == b && fast.phase == plain.phase && fast.column == plain.column);
    offset += piece;
  } while (offset < length);
}

void Decode(const std::vector<uint8_t>& bytes, std::mt19937& random) {
  // Never a null pointer, even for no text: the coder refuses that.
  const std::string copy(bytes.begin(), bytes.end());
  const char* text = copy.c_str();
  Base64State fast{}, plain{};
  const auto length = static_cast<int32_t>(bytes.size());
  int32_t offset = 0;
  do {
    const int32_t piece = std::min<int32_t>(length - offset, 1 + random() % 600);
    const auto capacity = static_cast<int32_t>(random() % static_cast<uint32_t>(piece + 4));
    std::vector<uint8_t> a(static_cast<size_t>(capacity) + 8, 0xA5), b = a;
    const int32_t na = Base64DecodeChunk(text + offset, piece, a.data(), capacity, &fast);
    const int32_t nb =
        fe::reference::Base64DecodeChunk(text + offset, piece, b.data(), capacity, &plain);
    Check(na == nb && a == b);
    if (na < 0) return;
    Check(fast.phase == plain.phase);
    offset += piece;
  } while (offset < length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t mode = input.Take();
  std::mt19937 random(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  if (mode & 1) {
    Decode(rest, random);
  } else {
    Encode(rest, (mode & 2) != 0, random);
  }
  return 0;
}
