// The Base64 chunk coders against the character-at-a-time machines at every
// length up to 4096, split at random places into chunks of random capacity.
// make test runs this suite at every instruction-set level (FE_CPU), so the
// vector kernels and the table loops both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "chunk_pieces.h"
#include "codecs/base64_kernels.h"
#include "codecs/codec_internal.h"
#include "cpu/cpu_level.h"
#include "reference/base64_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr int32_t kLongest = 4096;

bool SameEncoderState(const Base64State& a, const Base64State& b) {
  return a.phase == b.phase && a.column == b.column && a.saved[0] == b.saved[0] &&
         a.saved[1] == b.saved[1] && a.saved[2] == b.saved[2];
}

TEST(Base64Kernels, EncoderAgreesWithThePlainMachineAtEveryLength) {
  std::mt19937 random(2024);
  for (int32_t length = 0; length <= kLongest; ++length) {
    const Bytes input = RandomBytes(static_cast<size_t>(length), static_cast<uint32_t>(length));
    const bool wrap = length % 2 == 1;
    Base64State fast{}, plain{};
    ExpectSameInPieces<char>(
        length, random, &fast, &plain,
        // From the smallest capacity the coder accepts upwards, so that it
        // stops for room before a group, before a line break and inside one.
        [&](int32_t piece) {
          return piece + piece / 3 +
                 static_cast<int32_t>(random() % (random() % 4 == 0 ? 400u : 6u));
        },
        [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base64State* state) {
          return Base64EncodeChunk(input.data() + at, piece, out, capacity, state, wrap);
        },
        [&](int32_t at, int32_t piece, char* out, int32_t capacity, Base64State* state) {
          return reference::Base64EncodeChunk(input.data() + at, piece, out, capacity, state, wrap);
        },
        SameEncoderState);
    ASSERT_FALSE(HasFatalFailure());
    char tailA[8], tailB[8];
    ASSERT_EQ(Base64EncodeFinish(&fast, tailA, wrap), Base64EncodeFinish(&plain, tailB, wrap));
  }
}

// Base64 text of `length` characters (wrapped for odd lengths) with up to
// three characters replaced by ones a decoder must treat specially.
std::string DamagedText(std::mt19937& random, int32_t length) {
  const uint32_t flags = dataEncodeBase64 | (length % 2 ? dataEncodeWrapLines : 0);
  std::string text = Encode(RandomBytes(static_cast<size_t>(length), random()), flags);
  text.resize(static_cast<size_t>(length), 'Q');
  static const std::string noise("=\r\n \t\v!-_.:@[`{\x7F\x80\xC3\xFF\0", 21);
  Damage(random, text, noise);
  return text;
}

// Decodes the text in random pieces with random capacities, both ways:
// every count, byte and phase must agree.
void ExpectChunkedDecodingAgrees(std::mt19937& random, const std::string& text) {
  Base64State fast{}, plain{};
  ExpectSameInPieces<uint8_t>(
      static_cast<int32_t>(text.size()), random, &fast, &plain,
      [&](int32_t piece) { return static_cast<int32_t>(random() % (piece + 4u)); },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base64State* state) {
        return Base64DecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Base64State* state) {
        return reference::Base64DecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      [](const Base64State& a, const Base64State& b) { return a.phase == b.phase; });
}

TEST(Base64Kernels, DecoderAgreesWithThePlainMachineAtEveryLength) {
  std::mt19937 random(4096);
  for (int32_t length = 0; length <= kLongest; ++length) {
    const std::string text = DamagedText(random, length);
    ExpectChunkedDecodingAgrees(random, text);
  }
}

// Wrapped text with runs of white space and other skipped characters
// inserted anywhere, inside groups too, where a vector step squeezes them
// out: every count, byte and phase must be the plain machine's.
TEST(Base64Kernels, DecoderAgreesWithCharactersInsertedAnywhere) {
  std::mt19937 random(7202);
  static const std::string inserted("\r\n \t\v\f!-=\x80", 11);
  for (int32_t length = 0; length <= kLongest; length += 1 + static_cast<int32_t>(random() % 7)) {
    std::string text = Encode(RandomBytes(static_cast<size_t>(length), random()),
                              dataEncodeBase64 | dataEncodeWrapLines);
    for (int k = static_cast<int>(random() % 24); k > 0; --k) {
      const size_t at = random() % (text.size() + 1);
      // Mostly white space; now and then a character that ends the vector step.
      const size_t pick = random() % 16 < 14 ? random() % 6 : 6 + random() % 5;
      // Short runs, and now and then one long enough to fill most of a
      // 64-character block.
      const size_t run = random() % 8 == 0 ? 20 + random() % 60 : 1 + random() % 3;
      text.insert(at, run, inserted[pick]);
    }
    ExpectChunkedDecodingAgrees(random, text);
  }
}

TEST(Base64Kernels, EveryByteAtEveryPositionDecodesAsThePlainMachine) {
  const std::string clean = Encode(RandomBytes(72, 5), dataEncodeBase64);
  ASSERT_EQ(clean.size(), 96u);
  ExpectEveryByteAtEveryPositionAgrees<Base64State>(clean, 72, Base64DecodeChunk,
                                                    reference::Base64DecodeChunk);
}

// DecodeBuffer measures its text a piece at a time: damage, padding, a
// full buffer and the terminator placed around the piece boundaries must
// give what one pass over the whole text gives.
TEST(Base64Kernels, DecodeBufferAgreesWithOnePassAroundItsPieces) {
  constexpr size_t kPiece = codecs::kBase64TextPiece;
  std::mt19937 random(65536);
  const std::string clean = Encode(RandomBytes(3 * kPiece, 77), dataEncodeBase64);
  static const std::string noise("=\r\n!\x80", 5);
  for (int round = 0; round < 300; ++round) {
    std::string text = clean.substr(0, kPiece + random() % (2 * kPiece));
    const size_t boundary = kPiece * (1 + random() % 2);
    for (int k = static_cast<int>(random() % 3); k > 0; --k) {
      const size_t at = boundary - 6 + random() % 12;
      if (at < text.size()) text[at] = noise[random() % noise.size()];
    }
    const auto capacity =
        static_cast<int32_t>(random() % 4 == 0 ? boundary * 3 / 4 - random() % 8 : 3 * kPiece);
    Base64State plain{};
    Bytes a(static_cast<size_t>(capacity) + 8, 0xA5), b = a;
    const int32_t expected = reference::Base64DecodeChunk(
        text.data(), static_cast<int32_t>(text.size()), b.data(), capacity, &plain);
    ASSERT_EQ(DecodeBuffer(text.c_str(), a.data(), capacity, dataDecodeBase64), expected)
        << "round " << round;
    ASSERT_EQ(a, b) << "round " << round;
  }
}

TEST(Base64Kernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenBase64Kernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx2);
}

}  // namespace
}  // namespace fe::test
