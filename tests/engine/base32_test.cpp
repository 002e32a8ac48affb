#include <gtest/gtest.h>

#include "test_support.h"

namespace fe::test {
namespace {

// The chunk encoder and finisher bit by bit, as described.
std::string PlainBase32(const Bytes& input, bool wrap) {
  static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
  std::string out;
  int column = 0;
  auto put = [&](char c) {
    out += c;
    if (wrap && ++column == 72) {
      out += "\r\n";
      column = 0;
    }
  };
  uint64_t acc = 0;
  int bits = 0;
  for (uint8_t b : input) {
    acc = acc << 8 | b;
    bits += 8;
    while (bits >= 5) {
      bits -= 5;
      put(alphabet[(acc >> bits) & 31]);
      acc &= (1ull << bits) - 1;
    }
  }
  if (bits > 0) {
    put(alphabet[(acc << (5 - bits)) & 31]);
    for (int k = 0; k < 7; ++k)
      put('=');
  }
  if (wrap && column > 0) out += "\r\n";
  return out;
}

TEST(Base32, OneByteGetsSevenEquals) {
  EXPECT_EQ(Encode(Bytes{0x66}, dataEncodeBase32), "MY=======");
}

TEST(Base32, FiveBytesHaveNoPadding) {
  EXPECT_EQ(Encode("fooba", dataEncodeBase32), "MZXW6YTB");
}

TEST(Base32, PartialGroupsAlwaysGetSevenEquals) {
  EXPECT_EQ(Encode("fo", dataEncodeBase32), "MZXQ=======");
  EXPECT_EQ(Encode("foo", dataEncodeBase32), "MZXW6=======");
  EXPECT_EQ(Encode("foob", dataEncodeBase32), "MZXW6YQ=======");
  EXPECT_EQ(Encode("foobar", dataEncodeBase32), "MZXW6YTBOI=======");
}

TEST(Base32, EmptyInputEncodesToEmptyString) {
  EXPECT_EQ(Encode("", dataEncodeBase32), "");
  EXPECT_EQ(Encode("", dataEncodeBase32 | dataEncodeWrapLines), "");
}

TEST(Base32, WrapsAtSeventyTwoCharacters) {
  const Bytes input = RandomBytes(45, 30);  // exactly 72 characters
  EXPECT_EQ(Encode(input, dataEncodeBase32 | dataEncodeWrapLines), PlainBase32(input, true));
  EXPECT_EQ(Encode(input, dataEncodeBase32 | dataEncodeWrapLines).size(), 74u);
}

TEST(Base32, EncoderMatchesPlainAccumulator) {
  for (size_t length = 0; length < 400; ++length) {
    const Bytes input = RandomBytes(length, static_cast<uint32_t>(length));
    ASSERT_EQ(Encode(input, dataEncodeBase32), PlainBase32(input, false)) << length;
    ASSERT_EQ(Encode(input, dataEncodeBase32 | dataEncodeWrapLines), PlainBase32(input, true))
        << length;
  }
}

TEST(Base32, ChunksCarryTheAccumulator) {
  const Bytes input = RandomBytes(1000, 31);
  std::mt19937 random(32);
  for (int wrap = 0; wrap < 2; ++wrap) {
    Base32State state{};
    std::string text;
    size_t offset = 0;
    while (offset < input.size()) {
      const size_t piece = std::min<size_t>(input.size() - offset, 1 + random() % 37);
      char out[256];
      const int32_t n = Base32EncodeChunk(input.data() + offset, static_cast<int32_t>(piece), out,
                                          sizeof out, &state, wrap);
      ASSERT_GE(n, 0);
      text.append(out, static_cast<size_t>(n));
      offset += piece;
    }
    char tail[128];
    text.append(tail, static_cast<size_t>(Base32EncodeFinish(&state, tail, sizeof tail, wrap)));
    EXPECT_EQ(text, PlainBase32(input, wrap != 0));
  }
}

TEST(Base32, LineBreakThatDoesNotFitIsWrittenByTheNextChunk) {
  Base32State state{};
  const Bytes input = RandomBytes(50, 33);
  char out[128];
  EXPECT_EQ(Base32EncodeChunk(input.data(), 45, out, 73, &state, 1), 72);
  EXPECT_EQ(state.column, 72u);
  const int32_t n = Base32EncodeChunk(input.data() + 45, 5, out + 72, 40, &state, 1);
  EXPECT_EQ(std::string(out + 72, 2), "\r\n");
  EXPECT_EQ(n, 10);
}

TEST(Base32, FinisherCheckCanStillOverrunAndFails) {
  // Capacity for the chunk's characters and the five-byte check, but not for
  // the seven '=' and the terminator.
  const Bytes input = {0x66};
  for (int32_t size = 1; size < 12; ++size) {
    GuardedBuffer out(static_cast<size_t>(size));
    const int32_t n = EncodeBuffer(input.data(), 1, out.chars(), size, dataEncodeBase32);
    EXPECT_TRUE(out.GuardIntact()) << size;
    EXPECT_EQ(n, size >= 10 ? 9 : -1) << size;
  }
}

TEST(Base32, DecodingIsCaseInsensitive) {
  EXPECT_EQ(ToString(Decode("mzxw6ytb", dataDecodeBase32)), "fooba");
  EXPECT_EQ(ToString(Decode("MzXw6YtB", dataDecodeBase32)), "fooba");
}

TEST(Base32, DecodingStopsAtTheFirstEquals) {
  EXPECT_EQ(ToString(Decode("MY=======MZXW6YTB", dataDecodeBase32)), "f");
  EXPECT_EQ(ToString(Decode("MZXW6YTB=MZXW6YTB", dataDecodeBase32)), "fooba");
}

TEST(Base32, DecodingSkipsWhiteSpaceAndStraysBetweenGroups) {
  EXPECT_EQ(ToString(Decode("MZXW 6YTB\r\n", dataDecodeBase32)), "fooba");
  EXPECT_EQ(ToString(Decode("MZXW6YTB!MZXW6YTB", dataDecodeBase32)), "foobafooba");
}

TEST(Base32, ForeignCharacterWithBitsPendingFails) {
  int32_t result = 0;
  Decode("MZ!XW6YTB", dataDecodeBase32, &result);
  EXPECT_EQ(result, -1);
  Decode("M1", dataDecodeBase32, &result);
  EXPECT_EQ(result, -1);
}

TEST(Base32, DecodingStopsAtCapacity) {
  int32_t result = 0;
  EXPECT_EQ(ToString(Decode("MZXW6YTB", dataDecodeBase32, &result, 3)), "foo");
  EXPECT_EQ(result, 3);
}

}  // namespace
}  // namespace fe::test
