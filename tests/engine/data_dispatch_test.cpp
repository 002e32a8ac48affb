#include <gtest/gtest.h>

#include "codecs/data_dispatch.h"
#include "test_support.h"

namespace fe::test {
namespace {

TEST(DataDispatch, EncodingNumberAboveNineFails) {
  char out[64];
  uint8_t bytes[64];
  for (uint32_t encoding : {10u, 11u, 0xFFFFu}) {
    EXPECT_EQ(EncodeBuffer("abc", 3, out, sizeof out, encoding), -1);
    EXPECT_EQ(DecodeBuffer("YWJj", bytes, sizeof bytes, encoding), -1);
  }
}

TEST(DataDispatch, DefaultBehavesAsBase64) {
  for (size_t length : {0u, 1u, 2u, 3u, 54u, 55u, 1000u}) {
    const Bytes input = RandomBytes(length, static_cast<uint32_t>(length));
    for (uint32_t wrap : {0u, static_cast<uint32_t>(dataEncodeWrapLines)}) {
      const std::string text = Encode(input, dataEncodeBase64 | wrap);
      EXPECT_EQ(Encode(input, dataEncodeDefault | wrap), text);
      EXPECT_EQ(Decode(text, dataDecodeDefault), Decode(text, dataDecodeBase64));
    }
  }
}

TEST(DataDispatch, InvalidArgumentsFail) {
  char out[16];
  uint8_t bytes[16];
  EXPECT_EQ(EncodeBuffer(nullptr, 0, out, 16, 1), -1);
  EXPECT_EQ(EncodeBuffer("a", 1, nullptr, 16, 1), -1);
  EXPECT_EQ(EncodeBuffer("a", -1, out, 16, 1), -1);
  EXPECT_EQ(EncodeBuffer("a", 1, out, 0, 1), -1);
  EXPECT_EQ(DecodeBuffer(nullptr, bytes, 16, 1), -1);
  EXPECT_EQ(DecodeBuffer("YQ", nullptr, 16, 1), -1);
  EXPECT_EQ(DecodeBuffer("YQ", bytes, 0, 1), -1);
}

TEST(DataDispatch, CompressionFlagKeepsDataThatDoesNotShrinkUncompressed) {
  for (size_t length : {1u, 2u, 10u, 100u, 1000u}) {
    const Bytes input = RandomBytes(length, 60);
    for (uint32_t encoding = 0; encoding <= 9; ++encoding) {
      if (encoding == dataEncodeUTF7 || encoding == dataEncodeUTF8) continue;
      if (encoding == dataEncodeZ85 && length % 4 != 0) continue;
      EXPECT_EQ(Encode(input, encoding | fileEncodeCompressed), Encode(input, encoding))
          << encoding << " " << length;
    }
  }
}

TEST(DataDispatch, CompressionFlagCompressesDataThatShrinks) {
  const Bytes input(2000, 'a');
  const std::string text = Encode(input, dataEncodeBase64 | fileEncodeCompressed);
  EXPECT_LT(text.size(), 100u);
  EXPECT_EQ(text.substr(0, 2), "eN");  // 78 DA: a level-9 zlib stream
  EXPECT_EQ(Decode(text, dataDecodeBase64 | fileDecodeCompressed, nullptr, 4000), input);
}

TEST(DataDispatch, DecodingWithTheFlagAlwaysExpands) {
  // Short text is sent uncompressed, so decoding it with the flag fails and
  // it must be decoded without.
  const std::string text = Encode("hello", dataEncodeBase64 | fileEncodeCompressed);
  EXPECT_EQ(text, "aGVsbG8=");
  int32_t result = 0;
  Decode(text, dataDecodeBase64 | fileDecodeCompressed, &result);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(ToString(Decode(text, dataDecodeBase64)), "hello");
}

TEST(DataDispatch, CompressedRoundTripInEveryByteEncoding) {
  Bytes input;
  for (int i = 0; i < 4000; ++i)
    input.push_back(static_cast<uint8_t>("abcab"[i % 5] + i % 3));
  for (uint32_t encoding : {0u, 1u, 2u, 3u, 6u, 7u, 8u}) {
    const std::string text = Encode(input, encoding | fileEncodeCompressed);
    ASSERT_NE(text, "<fail>") << encoding;
    EXPECT_LT(text.size(), input.size() / 4) << encoding;
    EXPECT_EQ(Decode(text, encoding | fileDecodeCompressed, nullptr, 8000), input) << encoding;
  }
}

TEST(DataDispatch, DecodedCountOfZeroIsReturnedWithoutExpanding) {
  int32_t result = -1;
  Decode("", dataDecodeBase64 | fileDecodeCompressed, &result);
  EXPECT_EQ(result, 0);
}

TEST(DataDispatch, ExpansionLargerThanTheBufferFails) {
  const Bytes input(2000, 'a');
  const std::string text = Encode(input, dataEncodeBase64 | fileEncodeCompressed);
  int32_t result = 0;
  Decode(text, dataDecodeBase64 | fileDecodeCompressed, &result, 1999);
  EXPECT_EQ(result, -1);
}

TEST(DataDispatch, WrapFlagIsIgnoredByOtherEncodings) {
  const Bytes input = RandomBytes(200, 61);
  for (uint32_t encoding : {3u, 6u, 8u}) {
    EXPECT_EQ(Encode(input, encoding | dataEncodeWrapLines), Encode(input, encoding));
  }
}

// Where the steps, followed to the letter, write past the size they were
// given: inside memory the caller owns, the literal result; at the edge of
// the memory, -1 and nothing written past it.
struct LiteralCase {
  const char* input;
  int32_t length;
  int32_t outputSize;
  uint32_t flags;
  const char* literal;
};

TEST(DataDispatch, StepsPastTheOutputSizeGiveTheLiteralResultInsideOwnedMemory) {
  const LiteralCase cases[] = {
      {"=", 1, 2, dataEncodeQuoted, "=3D"},
      {"@", 1, 2, dataEncodeQuoted, "=40"},
      {"a=", 2, 3, dataEncodeQuoted, "a=3D"},
      {"\xC3\xA9", 1, 3, dataEncodeQuoted, "=C3"},
      {"ab", 2, 2, dataEncodeURL, "ab"},
      {"a", 1, 6, dataEncodeBase64 | dataEncodeWrapLines, "YQ==\r\n"},
  };
  for (const LiteralCase& c : cases) {
    GuardedBuffer roomy(1028);
    const int32_t count = fe::codecs::EncodeBufferWithin(c.input, c.length, roomy.chars(),
                                                         c.outputSize, roomy.size(), c.flags);
    ASSERT_EQ(ToString(roomy.chars(), count), c.literal) << c.input;
    EXPECT_EQ(roomy.chars()[count], '\0');
    // The public call owns only outputSize bytes: the same steps fail there.
    GuardedBuffer exact(static_cast<size_t>(c.outputSize));
    EXPECT_EQ(EncodeBuffer(c.input, c.length, exact.chars(), exact.size(), c.flags), -1) << c.input;
    EXPECT_TRUE(exact.GuardIntact());
  }
}

TEST(DataDispatch, OwnedMemoryStillBoundsEveryWrite) {
  GuardedBuffer buffer(3);
  EXPECT_EQ(
      fe::codecs::EncodeBufferWithin("=", 1, buffer.chars(), 2, buffer.size(), dataEncodeQuoted),
      -1);
  EXPECT_TRUE(buffer.GuardIntact());
  // Memory smaller than the size to check is refused outright.
  EXPECT_EQ(fe::codecs::EncodeBufferWithin("a", 1, buffer.chars(), 3, 2, dataEncodeURL), -1);
  EXPECT_EQ(fe::codecs::DecodeBufferWithin("a", buffer.bytes(), 3, 2, dataDecodeURL), -1);
}

TEST(DataDispatch, UrlDecodingTerminatesAFullOutputOnlyInOwnedMemory) {
  GuardedBuffer roomy(8);
  EXPECT_EQ(fe::codecs::DecodeBufferWithin("abc", roomy.bytes(), 3, roomy.size(), dataDecodeURL),
            3);
  EXPECT_EQ(roomy.chars()[3], '\0');
  GuardedBuffer exact(3);
  EXPECT_EQ(DecodeBuffer("abc", exact.bytes(), exact.size(), dataDecodeURL), 3);
  EXPECT_TRUE(exact.GuardIntact());
}

}  // namespace
}  // namespace fe::test
