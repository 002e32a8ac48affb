// Runs a chunk coder and its one-at-a-time reference over the same input
// in the same random pieces and capacities, and stops the fuzzer at the
// first count, output byte or state field in which they differ.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "fuzz_input.h"

namespace fe::fuzz {

inline void Check(bool ok) {
  if (!ok) __builtin_trap();
}

// `coder(offset, piece, out, capacity, state)` codes input[offset, offset +
// piece); `room(piece)` picks the capacity; `same(a, b)` compares states.
template <typename Out, typename State, typename Coder, typename Reference, typename Room,
          typename Same>
void CompareInPieces(int32_t length, std::mt19937& random, Room room, Coder coder,
                     Reference reference, Same same) {
  State fast{}, plain{};
  int32_t offset = 0;
  do {
    const int32_t piece = std::min<int32_t>(length - offset, 1 + random() % 600);
    const int32_t capacity = room(piece);
    std::vector<Out> a(static_cast<size_t>(capacity) + 8, static_cast<Out>(0xA5)), b = a;
    const int32_t na = coder(offset, piece, a.data(), capacity, &fast);
    const int32_t nb = reference(offset, piece, b.data(), capacity, &plain);
    Check(na == nb && a == b);
    if (na < 0) return;
    Check(same(fast, plain));
    offset += piece;
  } while (offset < length);
}

// The choice bytes of a coder pair's target: bit 0 of the first picks
// decoding, bit 1 wrapped encoding; the next two seed the splits; the rest
// is the data or the text.
template <typename Encode, typename Decode>
void RunCoderPair(const uint8_t* data, size_t size, Encode encode, Decode decode) {
  FuzzInput input(data, size);
  const uint8_t mode = input.Take();
  std::mt19937 random(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  if (mode & 1) {
    decode(rest, random);
  } else {
    encode(rest, (mode & 2) != 0, random);
  }
}

}  // namespace fe::fuzz
