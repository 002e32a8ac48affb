#include <gtest/gtest.h>

#include "test_support.h"

namespace fe::test {
namespace {

std::string UrlDecodeText(const std::string& text, int32_t* result = nullptr) {
  return ToString(Decode(text, dataDecodeURL, result));
}

TEST(Url, SpaceSlashAndTildeEncode) {
  EXPECT_EQ(Encode("a b/c~", dataEncodeURL), "a%20b%2Fc~");
}

TEST(Url, LettersAndDigitsPass) {
  const std::string plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789~";
  EXPECT_EQ(Encode(plain, dataEncodeURL), plain);
}

TEST(Url, DotDashAndUnderscoreAreEscaped) {
  EXPECT_EQ(Encode(".", dataEncodeURL), "%2E");
  EXPECT_EQ(Encode("-_", dataEncodeURL), "%2D%5F");
}

TEST(Url, EveryOtherByteIsEscaped) {
  for (int c = 0; c < 256; ++c) {
    const bool plain = isalnum(c) || c == '~';
    const std::string text = Encode(Bytes{static_cast<uint8_t>(c)}, dataEncodeURL);
    if (plain) {
      EXPECT_EQ(text, std::string(1, static_cast<char>(c)));
    } else {
      char expected[4];
      snprintf(expected, sizeof expected, "%%%02X", c);
      EXPECT_EQ(text, expected);
    }
  }
}

TEST(Url, DecodesEscapesInEitherCase) {
  EXPECT_EQ(UrlDecodeText("%41%4a"), "AJ");
}

TEST(Url, LonePercentStays) {
  EXPECT_EQ(UrlDecodeText("100%"), "100%");
  EXPECT_EQ(UrlDecodeText("%4"), "%4");
  EXPECT_EQ(UrlDecodeText("%zz"), "%zz");
}

TEST(Url, PlusTurnsTheRestIntoSpaces) {
  EXPECT_EQ(UrlDecodeText("a+b"), "a  ");
  EXPECT_EQ(UrlDecodeText("x+%41bc"), "x      ");
}

TEST(Url, EncodeThatWouldCutAnEscapeFails) {
  // Capacity 5 after "ab": three characters and the terminator no longer fit.
  const Bytes input = ToBytes("abc ");
  GuardedBuffer out(6 + 1);
  EXPECT_EQ(UrlEncode(input.data(), 4, out.chars(), 6), -1);
  EXPECT_TRUE(out.GuardIntact());
  GuardedBuffer roomy(7 + 1);
  EXPECT_EQ(UrlEncode(input.data(), 4, roomy.chars(), 7), 6);
  EXPECT_STREQ(roomy.chars(), "abc%20");
}

TEST(Url, EncodeFailsWhenCapacityIsReached) {
  const Bytes input = ToBytes("abcd");
  char out[8];
  EXPECT_EQ(UrlEncode(input.data(), 4, out, 3), -1);
  EXPECT_EQ(UrlEncode(input.data(), 4, out, 4), 4);
  EXPECT_STREQ(out, "abcd");
}

TEST(Url, TerminatorUsesTheByteBeyondCapacity) {
  const Bytes input = ToBytes("abcd");
  GuardedBuffer out(5);
  EXPECT_EQ(UrlEncode(input.data(), 4, out.chars(), 4), 4);
  EXPECT_EQ(out.chars()[4], '\0');
  EXPECT_TRUE(out.GuardIntact());
}

TEST(Url, DispatchFailsWhenTheTerminatorWouldNotFit) {
  GuardedBuffer out(4);
  EXPECT_EQ(EncodeBuffer("abcd", 4, out.chars(), 4, dataEncodeURL), -1);
  EXPECT_TRUE(out.GuardIntact());
  GuardedBuffer roomy(5);
  EXPECT_EQ(EncodeBuffer("abcd", 4, roomy.chars(), 5, dataEncodeURL), 4);
  EXPECT_STREQ(roomy.chars(), "abcd");
}

TEST(Url, DispatchDecodeFillsTheBufferWithoutTerminator) {
  GuardedBuffer out(4);
  EXPECT_EQ(DecodeBuffer("%41bcd", out.bytes(), 4, dataDecodeURL), 4);
  EXPECT_EQ(out.text(4), "Abcd");
  EXPECT_TRUE(out.GuardIntact());
  EXPECT_EQ(DecodeBuffer("%41bcde", out.bytes(), 4, dataDecodeURL), -1);
  EXPECT_TRUE(out.GuardIntact());
}

TEST(Url, EmptyInputGivesEmptyString) {
  char out[4] = {'x'};
  EXPECT_EQ(UrlEncode(reinterpret_cast<const uint8_t*>(""), -1, out, 1), 0);
  EXPECT_EQ(out[0], '\0');
  uint8_t bytes[4] = {'x'};
  EXPECT_EQ(UrlDecode("", -1, bytes, 1), 0);
  EXPECT_EQ(bytes[0], 0);
}

TEST(Url, InvalidArgumentsFail) {
  char out[4];
  uint8_t bytes[4];
  EXPECT_EQ(UrlEncode(nullptr, 1, out, 3), -1);
  EXPECT_EQ(UrlEncode(reinterpret_cast<const uint8_t*>("a"), 1, nullptr, 3), -1);
  EXPECT_EQ(UrlEncode(reinterpret_cast<const uint8_t*>("a"), 1, out, 0), -1);
  EXPECT_EQ(UrlDecode(nullptr, 1, bytes, 3), -1);
  EXPECT_EQ(UrlDecode("a", 1, bytes, 0), -1);
}

TEST(Url, DecodeFailsWhenCapacityIsReached) {
  uint8_t out[8];
  EXPECT_EQ(UrlDecode("abcd", -1, out, 3), -1);
  EXPECT_EQ(UrlDecode("abcd", -1, out, 4), 4);
}

}  // namespace
}  // namespace fe::test
