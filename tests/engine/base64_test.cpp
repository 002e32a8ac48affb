#include <gtest/gtest.h>

#include <cstring>

#include "reference/base64_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

TEST(Base64, ThreeBytesMakeFourCharacters) {
  char out[16];
  EXPECT_EQ(EncodeBuffer("Man", 3, out, sizeof out, dataEncodeBase64), 4);
  EXPECT_STREQ(out, "TWFu");
}

TEST(Base64, OneByteIsPaddedWithTwoEquals) {
  EXPECT_EQ(Encode("M", dataEncodeBase64), "TQ==");
}

TEST(Base64, TwoBytesArePaddedWithOneEquals) {
  EXPECT_EQ(Encode("Ma", dataEncodeBase64), "TWE=");
}

TEST(Base64, EmptyInputEncodesToEmptyString) {
  char out[5] = {'x', 'x', 'x', 'x', 'x'};
  EXPECT_EQ(EncodeBuffer("", 0, out, 5, dataEncodeBase64), 0);
  EXPECT_EQ(out[0], '\0');
}

TEST(Base64, EmptyInputWithWrapEncodesToLineBreak) {
  char out[8];
  EXPECT_EQ(EncodeBuffer("", 0, out, sizeof out, dataEncodeBase64 | dataEncodeWrapLines), 2);
  EXPECT_STREQ(out, "\r\n");
}

TEST(Base64, EmptyInputFailsWithFewerThanFiveBytesOfOutput) {
  for (int32_t size = 1; size < 5; ++size) {
    GuardedBuffer out(static_cast<size_t>(size));
    EXPECT_EQ(EncodeBuffer("", 0, out.chars(), size, dataEncodeBase64), -1) << size;
    EXPECT_TRUE(out.GuardIntact());
  }
}

TEST(Base64, WrappedFiftyFourBytesMakeExactlyOneLine) {
  const std::string text = Encode(RandomBytes(54, 1), dataEncodeBase64 | dataEncodeWrapLines);
  ASSERT_EQ(text.size(), 74u);
  EXPECT_EQ(text.find_first_of("\r\n"), 72u);
  EXPECT_EQ(text.substr(72), "\r\n");
}

TEST(Base64, WrappedFiftyFiveBytesStartASecondLine) {
  const std::string text = Encode(RandomBytes(55, 2), dataEncodeBase64 | dataEncodeWrapLines);
  ASSERT_EQ(text.size(), 72u + 2 + 4 + 2);
  EXPECT_EQ(text.substr(72, 2), "\r\n");
  EXPECT_EQ(text.substr(76, 2), "==");
  EXPECT_EQ(text.substr(78), "\r\n");
}

TEST(Base64, WrappedLinesAreSeventyTwoCharacters) {
  const std::string text = Encode(RandomBytes(1000, 3), dataEncodeBase64 | dataEncodeWrapLines);
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = text.find("\r\n", start);
    ASSERT_NE(end, std::string::npos);
    if (end + 2 < text.size()) EXPECT_EQ(end - start, 72u);
    start = end + 2;
  }
}

TEST(Base64, OutputOfInputLengthPlusOneAlwaysFails) {
  for (int32_t length = 0; length <= 300; ++length) {
    const Bytes input = RandomBytes(static_cast<size_t>(length), 4);
    GuardedBuffer out(static_cast<size_t>(length) + 1);
    EXPECT_EQ(EncodeBuffer(input.data(), length, out.chars(), length + 1, dataEncodeBase64), -1)
        << length;
    EXPECT_TRUE(out.GuardIntact());
  }
}

TEST(Base64, SmallestOutputSizeFollowsTheThreeChecks) {
  for (int32_t length = 1; length <= 100; ++length) {
    const Bytes input = RandomBytes(static_cast<size_t>(length), 5);
    const int32_t encoded = (length + 2) / 3 * 4;
    const int32_t finisher = length % 3 == 0 ? 1 : 4 - length % 3;
    // The chunk's bound on outputSize - 1, five bytes left for the finisher
    // after the chunk's characters, and room for the text and its NUL.
    const int32_t smallest =
        std::max({length + length / 3 + 1, encoded - finisher + 5, encoded + 1});
    for (int32_t size = 1; size <= smallest; ++size) {
      GuardedBuffer out(static_cast<size_t>(size));
      const int32_t n = EncodeBuffer(input.data(), length, out.chars(), size, dataEncodeBase64);
      EXPECT_EQ(n, size == smallest ? encoded : -1) << length << " " << size;
      EXPECT_TRUE(out.GuardIntact());
    }
  }
}

TEST(Base64, FinisherThatWouldOverrunTheBufferFails) {
  // One byte with wrap: the chunk writes one character, the finisher three
  // more and CR LF; with five bytes left the terminator would not fit.
  GuardedBuffer out(6);
  EXPECT_EQ(EncodeBuffer("M", 1, out.chars(), 6, dataEncodeBase64 | dataEncodeWrapLines), -1);
  EXPECT_TRUE(out.GuardIntact());
  GuardedBuffer roomy(7);
  EXPECT_EQ(EncodeBuffer("M", 1, roomy.chars(), 7, dataEncodeBase64 | dataEncodeWrapLines), 6);
  EXPECT_STREQ(roomy.chars(), "TQ==\r\n");
  EXPECT_TRUE(roomy.GuardIntact());
}

TEST(Base64, ChunkCapacityBoundExcludesPaddingAndBreaks) {
  Base64State state{};
  char out[64];
  const Bytes input = RandomBytes(30, 6);
  EXPECT_EQ(Base64EncodeChunk(input.data(), 30, out, 39, &state, 0), -1);
  state = {};
  EXPECT_EQ(Base64EncodeChunk(input.data(), 30, out, 40, &state, 0), 39);
  EXPECT_EQ(state.phase, 3u);
  EXPECT_EQ(Base64EncodeFinish(&state, out + 39, 0), 1);
}

TEST(Base64, ChunkStopsAtCapacityAndDropsTheRest) {
  // 60 bytes pass the bound with 80 characters, but the line break after 72
  // takes two of them: the loop stops at 80 having taken 59 bytes.
  Base64State state{};
  char out[80];
  const Bytes input = RandomBytes(60, 7);
  EXPECT_EQ(Base64EncodeChunk(input.data(), 60, out, 80, &state, 1), 80);
  EXPECT_EQ(std::string(out + 72, 2), "\r\n");
  EXPECT_EQ(state.phase, 2u);
  EXPECT_EQ(state.saved[1], input[58]);
}

TEST(Base64, DecodesAGroup) {
  EXPECT_EQ(ToString(Decode("TWFu", dataDecodeBase64)), "Man");
}

TEST(Base64, DecodingSkipsWhiteSpace) {
  EXPECT_EQ(ToString(Decode("TW Fu", dataDecodeBase64)), "Man");
  EXPECT_EQ(ToString(Decode("TW\r\nFu", dataDecodeBase64)), "Man");
  EXPECT_EQ(ToString(Decode("T\tW\vF\fu", dataDecodeBase64)), "Man");
}

TEST(Base64, StrayCharacterInsideAGroupFails) {
  int32_t result = 0;
  Decode("TW!Fu", dataDecodeBase64, &result);
  EXPECT_EQ(result, -1);
}

TEST(Base64, StrayCharacterBetweenGroupsIsSkipped) {
  EXPECT_EQ(ToString(Decode("TWFu!TWFu", dataDecodeBase64)), "ManMan");
  EXPECT_EQ(ToString(Decode("-_TWFu", dataDecodeBase64)), "Man");
}

TEST(Base64, EqualsSignEndsDecoding) {
  EXPECT_EQ(ToString(Decode("TWFu=xyz", dataDecodeBase64)), "Man");
  EXPECT_EQ(ToString(Decode("TQ==TWFu", dataDecodeBase64)), "M");
}

TEST(Base64, PaddingIsNotRequired) {
  EXPECT_EQ(ToString(Decode("TQ", dataDecodeBase64)), "M");
  EXPECT_EQ(ToString(Decode("TWE", dataDecodeBase64)), "Ma");
  EXPECT_EQ(ToString(Decode("TWFuT", dataDecodeBase64)), "Man");
}

TEST(Base64, DecodingIntoASmallBufferReturnsWhatFits) {
  int32_t result = 0;
  const Bytes out = Decode("TWFuTWFu", dataDecodeBase64, &result, 4);
  EXPECT_EQ(result, 4);
  EXPECT_EQ(ToString(out), "ManM");
}

TEST(Base64, ChunkedDecodingCarriesTheGroup) {
  Base64State state{};
  uint8_t out[8];
  EXPECT_EQ(Base64DecodeChunk("TW", 2, out, 8, &state), 1);
  EXPECT_EQ(Base64DecodeChunk("Fu", 2, out + 1, 7, &state), 2);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 3), "Man");
}

TEST(Base64, EncoderMatchesPlainStateMachine) {
  std::mt19937 random(8);
  for (int round = 0; round < 400; ++round) {
    const auto length = static_cast<int32_t>(random() % 400);
    const Bytes input = RandomBytes(static_cast<size_t>(length), static_cast<uint32_t>(round));
    const bool wrap = random() % 2;
    Base64State fast{};
    Base64State plain{};
    std::string fastOut, plainOut;
    int32_t offset = 0;
    while (offset < length) {
      const int32_t piece =
          std::min<int32_t>(length - offset, 1 + static_cast<int32_t>(random() % 90));
      const int32_t capacity = piece + piece / 3 + static_cast<int32_t>(random() % 8);
      std::vector<char> a(static_cast<size_t>(capacity)), b(static_cast<size_t>(capacity));
      const int32_t na =
          Base64EncodeChunk(input.data() + offset, piece, a.data(), capacity, &fast, wrap);
      const int32_t nb = reference::Base64EncodeChunk(input.data() + offset, piece, b.data(),
                                                      capacity, &plain, wrap);
      ASSERT_EQ(na, nb);
      fastOut.append(a.data(), static_cast<size_t>(na));
      plainOut.append(b.data(), static_cast<size_t>(nb));
      ASSERT_EQ(fast.phase, plain.phase);
      ASSERT_EQ(fast.column, plain.column);
      offset += piece;
    }
    ASSERT_EQ(fastOut, plainOut);
    char tailA[8], tailB[8];
    const int32_t ta = Base64EncodeFinish(&fast, tailA, wrap);
    const int32_t tb = Base64EncodeFinish(&plain, tailB, wrap);
    ASSERT_EQ(std::string(tailA, static_cast<size_t>(ta)),
              std::string(tailB, static_cast<size_t>(tb)));
  }
}

TEST(Base64, DecoderMatchesPlainStateMachine) {
  std::mt19937 random(9);
  const std::string noise = "AZaz09+/= \r\n!-_\x80";
  for (int round = 0; round < 400; ++round) {
    std::string text = Encode(RandomBytes(random() % 300, static_cast<uint32_t>(round)),
                              dataEncodeBase64 | (round % 2 ? dataEncodeWrapLines : 0));
    Damage(random, text, noise);
    const auto capacity = static_cast<int32_t>(random() % 260);
    Base64State fast{}, plain{};
    Bytes a(static_cast<size_t>(capacity) + 1), b(static_cast<size_t>(capacity) + 1);
    const auto length = static_cast<int32_t>(text.size());
    const int32_t na = Base64DecodeChunk(text.data(), length, a.data(), capacity, &fast);
    const int32_t nb =
        reference::Base64DecodeChunk(text.data(), length, b.data(), capacity, &plain);
    ASSERT_EQ(na, nb) << text;
    if (na > 0) {
      ASSERT_EQ(Bytes(a.begin(), a.begin() + na), Bytes(b.begin(), b.begin() + nb));
    }
  }
}

TEST(Base64OneShot, EncodesWithPaddingAndTerminator) {
  char out[16];
  EXPECT_EQ(Base64Encode(reinterpret_cast<const uint8_t*>("Ma"), 2, out, sizeof out), 4);
  EXPECT_STREQ(out, "TWE=");
}

TEST(Base64OneShot, EmptyInputWritesTerminator) {
  char out[8] = {'x'};
  EXPECT_EQ(Base64Encode(reinterpret_cast<const uint8_t*>(""), 0, out, sizeof out), 0);
  EXPECT_EQ(out[0], '\0');
}

TEST(Base64OneShot, NullInputOrNegativeLengthIsInvalidParameter) {
  char out[16];
  EngineSetLastError(0);
  EXPECT_EQ(Base64Encode(nullptr, 1, out, sizeof out), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EngineSetLastError(0);
  EXPECT_EQ(Base64Encode(reinterpret_cast<const uint8_t*>("a"), -1, out, sizeof out), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
}

TEST(Base64OneShot, OutputBelowRequiredSizeIsInsufficientBuffer) {
  const Bytes input = RandomBytes(10, 10);
  // ((4 * 10 / 3 + 3) rounded down to 4) + 4 = 16 + 4 = 20.
  GuardedBuffer small(19), exact(20);
  EngineSetLastError(0);
  EXPECT_EQ(Base64Encode(input.data(), 10, small.chars(), 19), -1);
  EXPECT_EQ(EngineGetLastError(), 122u);
  EXPECT_EQ(Base64Encode(input.data(), 10, exact.chars(), 20), 16);
  EXPECT_TRUE(exact.GuardIntact());
  EngineSetLastError(0);
  EXPECT_EQ(Base64Encode(input.data(), 10, nullptr, 100), -1);
  EXPECT_EQ(EngineGetLastError(), 122u);
}

TEST(Base64OneShot, DecodeEmptyOrNullTextGivesZero) {
  uint8_t out[8];
  EXPECT_EQ(Base64Decode(nullptr, out, 8), 0);
  EXPECT_EQ(Base64Decode("", out, 8), 0);
  EXPECT_EQ(Base64Decode("", nullptr, 8), 0);
  EXPECT_EQ(Base64Decode("TWFu", nullptr, 8), -1);
}

TEST(Base64OneShot, DecodeNeedsTwoThirdsOfTheTextLength) {
  uint8_t out[16];
  // "TWFuTWFu": 8 characters, 2 * 8 / 3 = 5.
  EXPECT_EQ(Base64Decode("TWFuTWFu", out, 4), -1);
  EXPECT_EQ(Base64Decode("TWFuTWFu", out, 5), 5);
  EXPECT_EQ(Base64Decode("TWFuTWFu", out, 6), 6);
}

TEST(Base64OneShot, RoundTrips) {
  for (size_t length = 0; length < 300; ++length) {
    const Bytes input = RandomBytes(length, static_cast<uint32_t>(length));
    std::vector<char> text(length * 2 + 16);
    const int32_t n =
        Base64Encode(length ? input.data() : reinterpret_cast<const uint8_t*>(""),
                     static_cast<int32_t>(length), text.data(), static_cast<int32_t>(text.size()));
    ASSERT_EQ(n, static_cast<int32_t>((length + 2) / 3 * 4));
    Bytes back(length + 8);
    const int32_t m = Base64Decode(text.data(), back.data(), static_cast<int32_t>(back.size()));
    ASSERT_EQ(m, static_cast<int32_t>(length));
    back.resize(length);
    ASSERT_EQ(back, input);
  }
}

}  // namespace
}  // namespace fe::test
