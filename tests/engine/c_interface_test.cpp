// What the public header promises C callers: it stands alone, names every
// constant, and its documented buffer sizes are enough.
#include <gtest/gtest.h>

#include <cstring>

#include "test_support.h"

namespace fe::test {
namespace {

size_t Ceil(size_t n, size_t d) {
  return (n + d - 1) / d;
}

// The documented room for the Base64 and Base32 rows, line breaks included.
size_t DocumentedRoom(uint32_t encoding, size_t n, bool wrap) {
  const size_t text = encoding == dataEncodeBase64 ? 4 * Ceil(n, 3) : 8 * Ceil(n, 5) + 7;
  const size_t base = encoding == dataEncodeBase64 ? 4 * Ceil(n, 3) + 5 : 8 * Ceil(n, 5) + 8;
  return base + (wrap ? 2 * Ceil(text, 72) + 2 : 0);
}

TEST(CInterface, HeaderCompilesAsCWithOnlyItsOwnFolder) {
  // The build compiles c_interface_check.c with the header's folder as its
  // only include path; here the constants it declares are checked.
  EXPECT_EQ(fileEncodeUucode, 3);
  EXPECT_EQ(fileDecodeYencode, 4);
  EXPECT_EQ(fileEncodeBase85, 8);
  EXPECT_EQ(fileCompressionUnknown, 0);
  EXPECT_EQ(fileCompressionDeflate, 1);
  EXPECT_EQ(fileCompressionBzip2, 2);
  EXPECT_EQ(fileCompressionLzma, 3);
}

TEST(CInterface, DocumentedBase64AndBase32SizesAreEnough) {
  for (uint32_t encoding : {uint32_t{dataEncodeBase64}, uint32_t{dataEncodeBase32}}) {
    for (bool wrap : {false, true}) {
      for (size_t n = 0; n <= 600; ++n) {
        const Bytes data = RandomBytes(n, static_cast<uint32_t>(n));
        const size_t room = DocumentedRoom(encoding, n, wrap);
        GuardedBuffer out(room);
        const int32_t count =
            EncodeBuffer(n ? data.data() : out.bytes(), static_cast<int32_t>(n), out.chars(),
                         out.size(), encoding | (wrap ? dataEncodeWrapLines : 0));
        ASSERT_GE(count, 0) << encoding << " wrap " << wrap << " n " << n;
        EXPECT_TRUE(out.GuardIntact());
      }
    }
  }
}

TEST(CInterface, DocumentedBoundsOfTheOtherEncodingsAreEnough) {
  for (size_t n = 1; n <= 400; ++n) {
    for (const Bytes& data : {RandomBytes(n, 7), Bytes(n, 0), Bytes(n, '=')}) {
      const struct {
        uint32_t encoding;
        size_t room;
      } rows[] = {
          {dataEncodeBase58, 138 * n / 100 + 2},
          {dataEncodeBase85, 5 * Ceil(n, 4) + 1},
          {dataEncodeQuoted, 3 * n + 2},
          {dataEncodeURL, 3 * n + 1},
      };
      for (const auto& row : rows) {
        GuardedBuffer out(row.room);
        EXPECT_GE(EncodeBuffer(data.data(), static_cast<int32_t>(n), out.chars(), out.size(),
                               row.encoding),
                  0)
            << row.encoding << " n " << n;
        EXPECT_TRUE(out.GuardIntact());
      }
      if (n % 4 == 0) {
        GuardedBuffer out(5 * n / 4 + 1);
        EXPECT_EQ(EncodeBuffer(data.data(), static_cast<int32_t>(n), out.chars(), out.size(),
                               dataEncodeZ85),
                  static_cast<int32_t>(5 * n / 4));
      }
    }
  }
}

TEST(CInterface, EncoderCapacitiesCountTheTerminator) {
  const Bytes data = ToBytes("abcd");
  char text[16];
  // Base85 of four bytes is five characters: capacity 5 has no room left
  // for the NUL, 6 has.
  EXPECT_EQ(Base85Encode(data.data(), 4, text, 5), -1);
  EXPECT_EQ(Base85Encode(data.data(), 4, text, 6), 5);
  EXPECT_EQ(Z85Encode(data.data(), 4, text, 5), -1);
  EXPECT_EQ(Z85Encode(data.data(), 4, text, 6), 5);
  const int32_t digits = Base58Encode(data.data(), 4, text, sizeof text);
  ASSERT_GT(digits, 0);
  EXPECT_EQ(Base58Encode(data.data(), 4, text, digits), -1);
  EXPECT_EQ(Base58Encode(data.data(), 4, text, digits + 1), digits);
}

TEST(CInterface, UnicodeDecodingCountsTheTerminator) {
  char16_t units[8];
  EXPECT_EQ(DecodeBuffer("Hi", units, 8, dataDecodeUTF8), 3);
  EXPECT_EQ(units[2], 0);
  EXPECT_EQ(DecodeBuffer("Hi", units, 8, dataDecodeUTF7), 3);
}

TEST(CInterface, PathHelpersWriteAtMost261Bytes) {
  // A name of 259 characters: the full path is cut to fit 261 bytes.
  const std::string name = "/" + std::string(258, 'a');
  GuardedBuffer full(261);
  ASSERT_NE(GetFullPathFromName(name.c_str(), full.chars()), nullptr);
  EXPECT_TRUE(full.GuardIntact());
  GuardedBuffer combined(260);
  ASSERT_NE(CombinePath(name.c_str(), "bbbbbbbb", combined.chars()), nullptr);
  EXPECT_TRUE(combined.GuardIntact());
  EXPECT_EQ(std::strlen(combined.chars()), 259u);
}

TEST(CInterface, DecryptTextLeavesTheBufferAndSaysFailureByTheLastError) {
  char cipher[128];
  ASSERT_GT(EncryptText("pw", "secret", 0, cipher, sizeof cipher), 0);
  char plain[64] = "untouched";
  EngineSetLastError(0);
  EXPECT_EQ(DecryptText("wrong", cipher, plain, sizeof plain), 9);
  EXPECT_EQ(EngineGetLastError(), 13u);
  EXPECT_STREQ(plain, "untouched");
  EngineSetLastError(0);
  EXPECT_EQ(DecryptText("pw", cipher, plain, sizeof plain), 6);
  EXPECT_EQ(EngineGetLastError(), 0u);
  EXPECT_STREQ(plain, "secret");
}

}  // namespace
}  // namespace fe::test
