// The Base85 decoder against the one-character-at-a-time reference at
// every length up to 4096, split at random places into pieces of random
// capacity. make test runs this suite at every instruction-set level
// (FE_CPU), so the vector kernel and the character loop both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "chunk_pieces.h"
#include "codecs/base85_kernels.h"
#include "codecs/codec_internal.h"
#include "cpu/cpu_level.h"
#include "reference/base85_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

bool SameState(const codecs::Base85Decoder& a, const reference::Base85State& b) {
  return a.value == b.value && a.digits == b.digits && a.full == b.full;
}

// The engine's decoder and the reference as one state, so that the piece
// runner can hand each its own.
struct Both {
  codecs::Base85Decoder fast;
  reference::Base85State plain;
};

void ExpectPiecesAgree(std::mt19937& random, const std::string& text) {
  Both fast, plain;
  ExpectSameInPieces<uint8_t>(
      static_cast<int32_t>(text.size()), random, &fast, &plain,
      // Mostly room for the piece; now and then a stop anywhere.
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 4u)) : piece;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return state->fast.Feed(text.data() + at, static_cast<size_t>(piece), out, capacity);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return reference::Base85Feed(text.data() + at, static_cast<size_t>(piece), out, capacity,
                                     &state->plain);
      },
      [](const Both& a, const Both& b) { return SameState(a.fast, b.plain); });
}

// Base85 text of random data (with runs of zero groups now and then),
// cut to `length` characters, with up to three characters replaced by
// ones the decoder treats apart: 'z', white space, characters above 'u'
// and below '!' and bytes from 128 up.
std::string DamagedText(std::mt19937& random, int32_t length) {
  Bytes data = RandomBytes(static_cast<size_t>(length), random());
  if (random() % 2 == 0) {
    for (size_t at = 0; at + 4 <= data.size(); at += 4) {
      if (random() % 4 == 0) std::fill(data.begin() + at, data.begin() + at + 4, 0);
    }
  }
  std::string text = length > 0 ? Encode(data, dataEncodeBase85) : "";
  text.resize(static_cast<size_t>(length), '!');
  static const std::string noise("z \r\n\tvw~\x80\xFF\0u!", 13);
  for (int k = static_cast<int>(random() % 4); k > 0 && length > 0; --k)
    text[random() % static_cast<uint32_t>(length)] = noise[random() % noise.size()];
  return text;
}

TEST(Base85Kernels, DecoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(8585);
  for (int32_t length = 0; length <= 4096; ++length)
    ExpectPiecesAgree(random, DamagedText(random, length));
}

// Groups whose values pass 2^32 wrap in the kernel exactly as one
// character at a time.
TEST(Base85Kernels, OverlongGroupsWrapAsThePlainLoop) {
  std::mt19937 random(8586);
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (size_t k = random() % 200; k > 0; --k)
      text += static_cast<char>(random() % 2 ? 'u' - random() % 4 : '!' + random() % 85);
    ExpectPiecesAgree(random, text);
  }
}

TEST(Base85Kernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenBase85Kernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
