// The Base64 chunk coders as this processor runs them (vector kernels where
// it has them) against the character-at-a-time machines: every count,
// output byte and state field identical, over chunk splits and capacities
// the input chooses.
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "file_encoder.h"
#include "reference/base64_reference.h"

namespace {

using fe::fuzz::CompareInPieces;

void Encode(const std::vector<uint8_t>& data, bool wrap, std::mt19937& random) {
  CompareInPieces<char, Base64State>(
      static_cast<int32_t>(data.size()), random,
      [&](int32_t piece) { return piece + piece / 3 + static_cast<int32_t>(random() % 12); },
      [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base64State* state) {
        return Base64EncodeChunk(data.data() + at, piece, out, capacity, state, wrap);
      },
      [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base64State* state) {
        return fe::reference::Base64EncodeChunk(data.data() + at, piece, out, capacity, state,
                                                wrap);
      },
      [](const Base64State& a, const Base64State& b) {
        return a.phase == b.phase && a.column == b.column;
      });
}

void Decode(const std::vector<uint8_t>& bytes, std::mt19937& random) {
  // Never a null pointer, even for no text: the coder refuses that.
  const std::string copy(bytes.begin(), bytes.end());
  const char* text = copy.c_str();
  CompareInPieces<uint8_t, Base64State>(
      static_cast<int32_t>(bytes.size()), random,
      [&](int32_t piece) { return static_cast<int32_t>(random() % (piece + 4u)); },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base64State* state) {
        return Base64DecodeChunk(text + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base64State* state) {
        return fe::reference::Base64DecodeChunk(text + at, piece, out, capacity, state);
      },
      [](const Base64State& a, const Base64State& b) { return a.phase == b.phase; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::RunCoderPair(data, size, Encode, Decode);
  return 0;
}
