// The Base85 decoder as this processor runs it (the vector kernel where it
// has one) against the one-character-at-a-time reference: every count,
// output byte and state field identical, over splits and capacities the
// input chooses. Choice bytes: a seed for the splits; the rest is the text.
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "codecs/codec_internal.h"
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
  return 0;
}
