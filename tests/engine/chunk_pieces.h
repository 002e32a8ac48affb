// What the kernel tests of the chunk coders share: the same input run
// through the engine's coder and its one-at-a-time reference in the same
// random pieces and capacities, every count, output byte and state field
// compared.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace fe::test {

// A chunk length: mostly short pieces at first, then long ones, so that
// group, line and kernel-step boundaries all land inside and between chunks.
inline int32_t PieceLength(std::mt19937& random, int32_t left) {
  const int32_t most = random() % 3 == 0 ? 24 : 3000;
  return std::min(left, 1 + static_cast<int32_t>(random() % static_cast<uint32_t>(most)));
}

// `coder(offset, piece, out, capacity, state)` codes units [offset, offset
// + piece) of the input, as does `reference`; `room(piece)` picks each
// capacity and `same` compares the states after every piece.
template <typename Out, typename State, typename Room, typename Coder, typename Reference,
          typename Same>
void ExpectSameInPieces(int32_t length, std::mt19937& random, State* fast, State* plain, Room room,
                        Coder coder, Reference reference, Same same) {
  int32_t offset = 0;
  do {
    const int32_t piece = PieceLength(random, length - offset);
    const int32_t capacity = room(piece);
    std::vector<Out> a(static_cast<size_t>(capacity) + 8, static_cast<Out>(0xA5)), b = a;
    const int32_t na = coder(offset, piece, a.data(), capacity, fast);
    const int32_t nb = reference(offset, piece, b.data(), capacity, plain);
    ASSERT_EQ(na, nb) << "length " << length << " offset " << offset;
    ASSERT_EQ(a, b) << "length " << length << " offset " << offset;
    if (na < 0) return;
    ASSERT_TRUE(same(*fast, *plain)) << "length " << length << " offset " << offset;
    offset += piece;
  } while (offset < length);
}

// Puts every byte value at every position of `clean` in turn and decodes
// each text in one piece both ways, `capacity` bytes at most.
template <typename State, typename Decoder, typename Reference>
void ExpectEveryByteAtEveryPositionAgrees(const std::string& clean, int32_t capacity,
                                          Decoder decode, Reference reference) {
  for (size_t position = 0; position < clean.size(); ++position) {
    for (int c = 0; c < 256; ++c) {
      std::string text = clean;
      text[position] = static_cast<char>(c);
      State fast{}, plain{};
      std::vector<uint8_t> a(static_cast<size_t>(capacity) + 8, 0xA5), b = a;
      const auto length = static_cast<int32_t>(text.size());
      ASSERT_EQ(decode(text.data(), length, a.data(), capacity, &fast),
                reference(text.data(), length, b.data(), capacity, &plain))
          << "byte " << c << " at " << position;
      ASSERT_EQ(a, b) << "byte " << c << " at " << position;
    }
  }
}

}  // namespace fe::test
