// Version 7 and 8 UUIDs and random tokens: layouts, text, strengths and
// encodings.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <regex>
#include <set>
#include <string>

#include "test_support.h"

namespace fe::test {
namespace {

uint64_t UnixMilliseconds() {
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                   std::chrono::system_clock::now().time_since_epoch())
                                   .count());
}

std::string Text(const EncoderUuid& record) {
  char text[37];
  EXPECT_EQ(FormatUuid(&record, text), 36);
  return text;
}

const std::regex kUuidPattern("[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}");

TEST(Uuid7, TextPatternVersionVariantAndTime) {
  const uint64_t before = UnixMilliseconds();
  EncoderUuid record;
  ASSERT_TRUE(CreateUuid7Record(&record));
  const uint64_t after = UnixMilliseconds();
  const std::string text = Text(record);
  EXPECT_TRUE(std::regex_match(text, kUuidPattern)) << text;
  EXPECT_EQ(text.substr(14, 3), "700");
  EXPECT_NE(std::string("89ab").find(text[19]), std::string::npos) << text;
  const uint64_t stamp = std::stoull(text.substr(0, 8) + text.substr(9, 4), nullptr, 16);
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
}

TEST(Uuid7, LayoutOverManyDraws) {
  std::set<std::string> seen;
  int highNibbles[16] = {};
  for (int i = 0; i < 100000; ++i) {
    EncoderUuid record;
    ASSERT_TRUE(CreateUuid7Record(&record));
    ASSERT_EQ(record.third & 0xFFF0, 0x7000);  // only four random bits after the version
    ASSERT_EQ(record.last[0] & 0xC0, 0x80);
    ++highNibbles[record.third & 15];
    seen.insert(Text(record));
  }
  EXPECT_EQ(seen.size(), 100000u);
  for (int count : highNibbles)
    EXPECT_GT(count, 5000);  // about 6250 each
}

TEST(Uuid8, CustomValueIsTheFirstGroup) {
  EncoderUuid record;
  ASSERT_TRUE(CreateUuid8Record(&record, 0x12345678));
  std::string text = Text(record);
  EXPECT_EQ(text.substr(0, 9), "12345678-");
  EXPECT_EQ(text[14], '8');
  EXPECT_NE(std::string("89ab").find(text[19]), std::string::npos);
  ASSERT_TRUE(CreateUuid8Record(&record, -1));
  EXPECT_EQ(Text(record).substr(0, 8), "ffffffff");
}

TEST(Uuid8, LayoutOverManyDraws) {
  std::set<std::string> seen;
  std::set<uint32_t> firsts;
  for (int i = 0; i < 100000; ++i) {
    EncoderUuid record;
    ASSERT_TRUE(CreateUuid8Record(&record, 0));
    ASSERT_EQ(record.third & 0xF000, 0x8000);
    ASSERT_EQ(record.last[0] & 0xC0, 0x80);
    firsts.insert(record.first);
    seen.insert(Text(record));
  }
  EXPECT_EQ(seen.size(), 100000u);
  EXPECT_GT(firsts.size(), 99000u);  // no custom value: the first field is random
}

TEST(Uuid, FormatOfNoRecordAndNoBuffer) {
  char text[37];
  EXPECT_EQ(FormatUuid(nullptr, text), 36);
  EXPECT_STREQ(text, "00000000-0000-0000-0000-000000000000");
  EngineSetLastError(0);
  EXPECT_EQ(FormatUuid(nullptr, nullptr), 0);
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter));
  EXPECT_FALSE(CreateUuid7Record(nullptr));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter));
  EXPECT_FALSE(CreateUuid8Record(nullptr, 1));
}

TEST(Uuid, FieldsPrintMostSignificantFirst) {
  EncoderUuid record = {
      0x01234567, 0x89ab, 0x7cde, {0xf0, 0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc, 0xde}};
  EXPECT_EQ(Text(record), "01234567-89ab-7cde-f012-3456789abcde");
}

std::string Token(int32_t bits, int32_t encoding) {
  char text[1025];
  std::memset(text, 'z', sizeof text);
  const int32_t n = CreateTokenText(bits, encoding, text);
  EXPECT_EQ(n, static_cast<int32_t>(std::strlen(text)));
  return text;
}

TEST(Token, DefaultIsBase58Of128Bits) {
  const std::string token = Token(0, 0);
  // 16 random bytes in Base58: 21 or 22 characters (fewer only with leading zero bytes).
  EXPECT_GE(token.size(), 16u);
  EXPECT_LE(token.size(), 22u);
  EXPECT_EQ(token.find_first_not_of("123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"),
            std::string::npos);
  uint8_t bytes[32];
  EXPECT_EQ(Base58Decode(token.c_str(), bytes, sizeof bytes), 16);
}

TEST(Token, Base64And32WithoutPadding) {
  const std::string base64 = Token(256, 1);
  EXPECT_EQ(base64.size(), 43u);
  EXPECT_EQ(base64.find('='), std::string::npos);
  const std::string base32 = Token(128, 7);
  EXPECT_EQ(base32.size(), 26u);
  EXPECT_EQ(base32.find_first_not_of("abcdefghijklmnopqrstuvwxyz234567"), std::string::npos);
}

TEST(Token, StrengthsRoundUpToPowersOfTwo) {
  // Base64 shows the byte count exactly: 4 * ceil(n / 3) less the padding.
  const struct {
    int32_t asked;
    size_t bytes;
  } cases[] = {{1, 8},      {-5, 8},     {64, 8},     {65, 16},      {100, 16},
               {128, 16},   {257, 64},   {512, 64},   {513, 128},    {2048, 256},
               {4095, 512}, {4096, 512}, {5000, 512}, {1 << 30, 512}};
  for (const auto& c : cases) {
    EXPECT_EQ(Token(c.asked, 1).size(), (c.bytes * 4 + 2) / 3) << c.asked;
  }
  EXPECT_EQ(Token(4096, 1).size(), 683u);  // one line, no wrapping
}

TEST(Token, EveryStrengthAndEncodingFits) {
  for (int32_t bits = 64; bits <= 4096; bits *= 2) {
    const size_t bytes = static_cast<size_t>(bits) / 8;
    EXPECT_EQ(Token(bits, 1).size(), (bytes * 4 + 2) / 3) << bits;
    EXPECT_EQ(Token(bits, 7).size(), (bytes * 8 + 4) / 5) << bits;
    const std::string base85 = Token(bits, 8);
    EXPECT_EQ(base85.size(), bytes / 4 * 5) << bits;
    const std::string base58 = Token(bits, 6);
    EXPECT_GT(base58.size(), bytes) << bits;
    EXPECT_LE(base58.size(), bytes * 138 / 100 + 1) << bits;
  }
}

TEST(Token, Base58StrengthsAtTheLimits) {
  uint8_t bytes[600];
  EXPECT_EQ(Base58Decode(Token(5000, 6).c_str(), bytes, sizeof bytes), 512);
  EXPECT_EQ(Base58Decode(Token(1, 6).c_str(), bytes, sizeof bytes), 8);
}

TEST(Token, OnlyFourEncodingsAreAllowed) {
  for (int32_t encoding : {2, 3, 4, 5, 9, 10, -1, 65536 + 1, 65536 + 6}) {
    EngineSetLastError(0);
    char text[1025] = "x";
    EXPECT_EQ(CreateTokenText(0, encoding, text), 0) << encoding;
    EXPECT_STREQ(text, "");
    EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter)) << encoding;
  }
  EXPECT_EQ(CreateTokenText(0, 1, nullptr), 0);
}

TEST(Token, TokensDiffer) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i)
    seen.insert(Token(64, 6));
  EXPECT_EQ(seen.size(), 1000u);
}

}  // namespace
}  // namespace fe::test
