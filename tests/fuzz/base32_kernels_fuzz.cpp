// The Base32 chunk coders as this processor runs them (vector kernels where
// it has them) against the one-at-a-time accumulator: every count, output
// byte and state field identical, over chunk splits and capacities the
// input chooses.
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "file_encoder.h"
#include "reference/base32_reference.h"

namespace {

using fe::fuzz::CompareInPieces;

bool SameState(const Base32State& a, const Base32State& b) {
  return a.accumulator == b.accumulator && a.bits == b.bits && a.column == b.column;
}

void Encode(const std::vector<uint8_t>& data, bool wrap, std::mt19937& random) {
  CompareInPieces<char, Base32State>(
      static_cast<int32_t>(data.size()), random,
      // Mostly room for the whole piece, now and then a stop anywhere.
      [&](int32_t piece) {
        const int32_t full = 2 * piece + 16;
        return random() % 4 == 0 ? static_cast<int32_t>(random() % static_cast<uint32_t>(full))
                                 : full;
      },
      [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base32State* state) {
        return Base32EncodeChunk(data.data() + at, piece, out, capacity, state, wrap);
      },
      [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base32State* state) {
        return fe::reference::Base32EncodeChunk(data.data() + at, piece, out, capacity, state,
                                                wrap);
      },
      SameState);
}

void Decode(const std::vector<uint8_t>& bytes, std::mt19937& random) {
  const std::string copy(bytes.begin(), bytes.end());
  const char* text = copy.c_str();
  CompareInPieces<uint8_t, Base32State>(
      static_cast<int32_t>(bytes.size()), random,
      [&](int32_t piece) { return static_cast<int32_t>(random() % (piece + 4u)); },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base32State* state) {
        return Base32DecodeChunk(text + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base32State* state) {
        return fe::reference::Base32DecodeChunk(text + at, piece, out, capacity, state);
      },
      SameState);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::RunCoderPair(data, size, Encode, Decode);
  return 0;
}
