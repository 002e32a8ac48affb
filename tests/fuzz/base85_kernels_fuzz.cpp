// The Base85 coders as this processor runs them (the vector kernels where
// it has them) against the one-group-at-a-time references: every count,
// output byte and state field identical, over splits and capacities the
// input chooses. Choice bytes: a seed for the splits and the encoder's
// capacity; the rest is the text to decode and, as bytes, the data to
// encode.
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "codecs/codec_internal.h"
#include "file_encoder.h"
#include "fuzz_input.h"
#include "reference/base85_reference.h"

namespace {

struct Both {
  fe::codecs::Base85Decoder fast;
  fe::reference::Base85State plain;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  std::mt19937 random(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  const std::string text(rest.begin(), rest.end());
  fe::fuzz::CompareInPieces<uint8_t, Both>(
      static_cast<int32_t>(text.size()), random,
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 4u)) : piece;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return state->fast.Feed(text.data() + at, static_cast<size_t>(piece), out, capacity);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return fe::reference::Base85Feed(text.data() + at, static_cast<size_t>(piece), out,
                                         capacity, &state->plain);
      },
      [](const Both& a, const Both& b) {
        return a.fast.value == b.plain.value && a.fast.digits == b.plain.digits &&
               a.fast.full == b.plain.full;
      });
  // Room for every group, or a stop anywhere before it.
  const auto room = static_cast<int32_t>(5 * ((rest.size() + 3) / 4) + 1);
  const int32_t capacity = random() % 2 ? room : 1 + static_cast<int32_t>(random() % room);
  std::vector<char> fast(static_cast<size_t>(capacity) + 8, 'x'), plain = fast;
  const auto length = static_cast<int32_t>(rest.size());
  fe::fuzz::Check(Base85Encode(rest.data(), length, fast.data(), capacity) ==
                  fe::reference::Base85Encode(rest.data(), length, plain.data(), capacity));
  fe::fuzz::Check(fast == plain);
  return 0;
}
