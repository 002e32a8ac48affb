#include <gtest/gtest.h>

#include <random>

#include "test_support.h"

namespace fe::test {
namespace {

// The byte-at-a-time big-number conversion, as described.
std::string PlainBase58(const Bytes& input) {
  static const char alphabet[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
  size_t zeros = 0;
  while (zeros < input.size() && input[zeros] == 0)
    ++zeros;
  std::vector<uint8_t> digits;  // least significant first
  for (size_t i = zeros; i < input.size(); ++i) {
    int carry = input[i];
    for (auto& d : digits) {
      carry += d * 256;
      d = static_cast<uint8_t>(carry % 58);
      carry /= 58;
    }
    while (carry) {
      digits.push_back(static_cast<uint8_t>(carry % 58));
      carry /= 58;
    }
  }
  std::string out(zeros, '1');
  for (auto it = digits.rbegin(); it != digits.rend(); ++it)
    out += alphabet[*it];
  return out;
}

// The plain conversion the other way: each character multiplies the number
// by 58 and adds its value.
Bytes PlainBase58Decode(const std::string& text) {
  static const std::string alphabet = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
  size_t ones = 0;
  while (ones < text.size() && text[ones] == '1')
    ++ones;
  Bytes number;  // least significant first
  for (size_t i = ones; i < text.size(); ++i) {
    int carry = static_cast<int>(alphabet.find(text[i]));
    for (auto& b : number) {
      carry += b * 58;
      b = static_cast<uint8_t>(carry & 0xFF);
      carry >>= 8;
    }
    while (carry) {
      number.push_back(static_cast<uint8_t>(carry & 0xFF));
      carry >>= 8;
    }
  }
  Bytes out(ones, 0);
  out.insert(out.end(), number.rbegin(), number.rend());
  return out;
}

TEST(Base58, LeadingZerosBecomeOnes) {
  EXPECT_EQ(Encode(Bytes{0, 0, 1}, dataEncodeBase58), "112");
}

TEST(Base58, EmptyInputEncodesToEmptyString) {
  char out[4] = {'x'};
  EXPECT_EQ(EncodeBuffer("", 0, out, 4, dataEncodeBase58), 0);
  EXPECT_EQ(out[0], '\0');
}

TEST(Base58, KnownText) {
  EXPECT_EQ(Encode("Hello World!", dataEncodeBase58), "2NEpo7TZRRrLZSi2U");
  EXPECT_EQ(ToString(Decode("2NEpo7TZRRrLZSi2U", dataDecodeBase58)), "Hello World!");
}

TEST(Base58, AllZeroInputIsAllOnes) {
  EXPECT_EQ(Encode(Bytes(5, 0), dataEncodeBase58), "11111");
  EXPECT_EQ(Decode("111", dataDecodeBase58), Bytes(3, 0));
}

TEST(Base58, EncoderMatchesPlainConversion) {
  for (size_t length = 0; length < 300; ++length) {
    Bytes input = RandomBytes(length, static_cast<uint32_t>(length));
    if (length % 7 == 0 && length > 2) input[0] = input[1] = 0;
    ASSERT_EQ(Encode(input, dataEncodeBase58), PlainBase58(input)) << length;
  }
}

// Long enough for the divide-and-conquer conversion (it takes over from a
// few hundred bytes on), with leading zero bytes and '1' characters.
TEST(Base58, LongInputsMatchThePlainConversionBothWays) {
  for (size_t length : {299u, 512u, 1000u, 2049u, 4096u, 8191u}) {
    Bytes input = RandomBytes(length, static_cast<uint32_t>(length));
    input[0] = 0;
    const std::string text = Encode(input, dataEncodeBase58);
    ASSERT_EQ(text, PlainBase58(input)) << length;
    const std::string typed = "11" + text.substr(0, text.size() / 2) + "zz";
    ASSERT_EQ(Decode(typed, dataDecodeBase58), PlainBase58Decode(typed)) << length;
  }
}

TEST(Base58, RoundTripOverRandomLengths) {
  std::mt19937 random(58);
  for (int round = 0; round < 400; ++round) {
    Bytes input = RandomBytes(random() % 700, random());
    for (size_t z = random() % 4; z > 0 && z <= input.size(); --z)
      input[z - 1] = 0;
    const std::string text = Encode(input, dataEncodeBase58);
    ASSERT_EQ(Decode(text, dataDecodeBase58), input) << round;
    ASSERT_EQ(PlainBase58Decode(text), input) << round;
  }
}

TEST(Base58, CapacityMustHoldTheTerminator) {
  const Bytes input = {0, 0, 1};
  char out[4];
  EngineSetLastError(0);
  EXPECT_EQ(Base58Encode(input.data(), 3, out, 3), -1);
  EXPECT_EQ(EngineGetLastError(), 122u);
  EXPECT_EQ(Base58Encode(input.data(), 3, out, 4), 3);
  EXPECT_STREQ(out, "112");
}

TEST(Base58, InvalidArgumentsAreInvalidParameter) {
  char out[8];
  EngineSetLastError(0);
  EXPECT_EQ(Base58Encode(nullptr, 1, out, 8), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EngineSetLastError(0);
  EXPECT_EQ(Base58Encode(reinterpret_cast<const uint8_t*>("a"), -1, out, 8), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
}

TEST(Base58, ForeignCharactersAreInvalidData) {
  for (const char* text : {"0", "O", "I", "l", "2N E", "\x80"}) {
    int32_t result = 0;
    EngineSetLastError(0);
    Decode(text, dataDecodeBase58, &result);
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(EngineGetLastError(), 13u) << text;
  }
}

TEST(Base58, DecodeIntoTooSmallBufferIsInsufficientBuffer) {
  uint8_t out[16];
  EngineSetLastError(0);
  EXPECT_EQ(Base58Decode("2NEpo7TZRRrLZSi2U", out, 11), -1);
  EXPECT_EQ(EngineGetLastError(), 122u);
  EXPECT_EQ(Base58Decode("2NEpo7TZRRrLZSi2U", out, 12), 12);
  EXPECT_EQ(Base58Decode("", out, 12), 0);
  EXPECT_EQ(Base58Decode(nullptr, out, 12), 0);
}

}  // namespace
}  // namespace fe::test
