// The Base32 chunk coders against the one-at-a-time accumulator at every
// length up to 4096, split at random places into chunks of random
// capacity. make test runs this suite at every instruction-set level
// (FE_CPU), so the vector kernels and the group loops both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "chunk_pieces.h"
#include "codecs/base32_kernels.h"
#include "cpu/cpu_level.h"
#include "reference/base32_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr int32_t kLongest = 4096;

bool SameState(const Base32State& a, const Base32State& b) {
  return a.accumulator == b.accumulator && a.bits == b.bits && a.column == b.column;
}

TEST(Base32Kernels, EncoderAgreesWithThePlainAccumulatorAtEveryLength) {
  std::mt19937 random(3232);
  for (int32_t length = 0; length <= kLongest; ++length) {
    const Bytes input = RandomBytes(static_cast<size_t>(length), static_cast<uint32_t>(length));
    const bool wrap = length % 2 == 1;
    Base32State fast{}, plain{};
    ExpectSameInPieces<char>(
        length, random, &fast, &plain,
        // Mostly enough room; now and then a capacity that stops the coder
        // before a group, inside one or before a line break.
        [&](int32_t piece) {
          const int32_t full = 2 * piece + 16;
          return random() % 4 == 0 ? static_cast<int32_t>(random() % static_cast<uint32_t>(full))
                                   : full;
        },
        [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base32State* state) {
          return Base32EncodeChunk(input.data() + at, piece, out, capacity, state, wrap);
        },
        [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base32State* state) {
          return reference::Base32EncodeChunk(input.data() + at, piece, out, capacity, state, wrap);
        },
        SameState);
    ASSERT_FALSE(HasFatalFailure());
  }
}

// Base32 text of `length` characters (wrapped for odd lengths, some letters
// in lower case) with up to three characters replaced by ones the decoder
// must treat specially.
std::string DamagedText(std::mt19937& random, int32_t length) {
  const uint32_t flags = dataEncodeBase32 | (length % 2 ? dataEncodeWrapLines : 0);
  std::string text = Encode(RandomBytes(static_cast<size_t>(length), random()), flags);
  text.resize(static_cast<size_t>(length), 'Q');
  if (random() % 2 == 0) {
    for (auto& c : text) {
      if (c >= 'A' && c <= 'Z' && random() % 3 == 0) c = static_cast<char>(c - 'A' + 'a');
    }
  }
  static const std::string noise("=\r\n \t!0189@[`{\x7F\x80\xC3\xFF\0", 19);
  Damage(random, text, noise);
  return text;
}

// Decodes the text in random pieces with random capacities, both ways:
// every count, byte and state field must agree.
void ExpectChunkedDecodingAgrees(std::mt19937& random, const std::string& text) {
  Base32State fast{}, plain{};
  ExpectSameInPieces<uint8_t>(
      static_cast<int32_t>(text.size()), random, &fast, &plain,
      [&](int32_t piece) { return static_cast<int32_t>(random() % (piece + 4u)); },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base32State* state) {
        return Base32DecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base32State* state) {
        return reference::Base32DecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      SameState);
}

TEST(Base32Kernels, DecoderAgreesWithThePlainAccumulatorAtEveryLength) {
  std::mt19937 random(8032);
  for (int32_t length = 0; length <= kLongest; ++length)
    ExpectChunkedDecodingAgrees(random, DamagedText(random, length));
}

// Groups the vector step cannot take: white space and other characters
// inserted anywhere, inside groups too.
TEST(Base32Kernels, DecoderAgreesWithCharactersInsertedAnywhere) {
  std::mt19937 random(3200);
  static const std::string inserted("\r\n \t\v\f!-=\x80", 11);
  for (int32_t length = 0; length <= kLongest; length += 1 + static_cast<int32_t>(random() % 7)) {
    std::string text = Encode(RandomBytes(static_cast<size_t>(length), random()),
                              dataEncodeBase32 | dataEncodeWrapLines);
    for (int k = static_cast<int>(random() % 24); k > 0; --k) {
      const size_t at = random() % (text.size() + 1);
      const size_t pick = random() % 16 < 14 ? random() % 6 : 6 + random() % 5;
      text.insert(at, 1 + random() % 3, inserted[pick]);
    }
    ExpectChunkedDecodingAgrees(random, text);
  }
}

TEST(Base32Kernels, EveryByteAtEveryPositionDecodesAsThePlainAccumulator) {
  const std::string clean = Encode(RandomBytes(60, 5), dataEncodeBase32);
  ASSERT_EQ(clean.size(), 96u);
  ExpectEveryByteAtEveryPositionAgrees<Base32State>(clean, 60, Base32DecodeChunk,
                                                    reference::Base32DecodeChunk);
}

// A capacity that is not a whole number of groups leaves the last group's
// bits held, as the accumulator would.
TEST(Base32Kernels, CapacityStopsInsideAGroupHoldTheRestOfItsBits) {
  const std::string text = Encode(RandomBytes(200, 9), dataEncodeBase32);
  for (int32_t capacity = 0; capacity <= 200; ++capacity) {
    Base32State fast{}, plain{};
    Bytes a(208, 0xA5), b = a;
    const auto length = static_cast<int32_t>(text.size());
    ASSERT_EQ(Base32DecodeChunk(text.data(), length, a.data(), capacity, &fast),
              reference::Base32DecodeChunk(text.data(), length, b.data(), capacity, &plain));
    ASSERT_EQ(a, b) << "capacity " << capacity;
    ASSERT_TRUE(SameState(fast, plain));
  }
}

// A state with no bits held may still carry stale accumulator bits (it is
// the caller's structure); whole groups leave it cleared, as the
// accumulator does after its fifth byte.
TEST(Base32Kernels, WholeGroupsClearStaleAccumulatorBits) {
  const std::string text = Encode(RandomBytes(100, 12), dataEncodeBase32);
  Base32State fast{0xDEADBEEF, 0, 0}, plain = fast;
  Bytes a(100, 0xA5), b = a;
  const auto length = static_cast<int32_t>(text.size());
  ASSERT_EQ(Base32DecodeChunk(text.data(), length, a.data(), 100, &fast),
            reference::Base32DecodeChunk(text.data(), length, b.data(), 100, &plain));
  EXPECT_EQ(a, b);
  EXPECT_TRUE(SameState(fast, plain));
  EXPECT_EQ(fast.accumulator, 0u);
}

TEST(Base32Kernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenBase32Kernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
