// The quoted-printable chunk decoder as this processor runs it (the vector
// kernel where it has one) against the character-at-a-time phases: every
// count, output byte and state field identical, over chunk splits and
// capacities the input chooses. Choice bytes: a seed for the splits; the
// rest is the text.
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "file_encoder.h"
#include "fuzz_input.h"
#include "reference/qp_reference.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  std::mt19937 random(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  const std::string copy(rest.begin(), rest.end());
  const char* text = copy.c_str();
  fe::fuzz::CompareInPieces<uint8_t, QpDecodeState>(
      static_cast<int32_t>(rest.size()), random,
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 2u)) : piece + 1;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return QpDecodeChunk(text + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return fe::reference::QpDecodeChunk(text + at, piece, out, capacity, state);
      },
      [](const QpDecodeState& a, const QpDecodeState& b) {
        return a.phase == b.phase && a.high == b.high && a.low == b.low;
      });
  return 0;
}
