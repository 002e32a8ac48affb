#include <gtest/gtest.h>

#include "test_support.h"

namespace fe::test {
namespace {

TEST(Z85, ThreeBytesFail) {
  char out[16];
  EngineSetLastError(0);
  EXPECT_EQ(EncodeBuffer("abc", 3, out, sizeof out, dataEncodeZ85), -1);
  EXPECT_EQ(EngineGetLastError(), 0u);  // the length test leaves no code
}

TEST(Z85, FourBytesGiveFiveCharacters) {
  EXPECT_EQ(Encode(Bytes{0x86, 0x4F, 0xD2, 0x6F}, dataEncodeZ85), "Hello");
}

TEST(Z85, ReferenceVector) {
  const Bytes input = {0x86, 0x4F, 0xD2, 0x6F, 0xB5, 0x59, 0xF7, 0x5B};
  EXPECT_EQ(Encode(input, dataEncodeZ85), "HelloWorld");
  EXPECT_EQ(Decode("HelloWorld", dataDecodeZ85), input);
}

TEST(Z85, EmptyInputIsInvalidParameter) {
  char out[8] = {'x'};
  EngineSetLastError(0);
  EXPECT_EQ(EncodeBuffer("", 0, out, 8, dataEncodeZ85), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_EQ(out[0], '\0');
}

TEST(Z85, FullOutputFailsAndGroupsBeyondCapacityAreDropped) {
  const Bytes input = RandomBytes(8, 50);
  char out[16];
  EXPECT_EQ(Z85Encode(input.data(), 8, out, 10), -1);
  EXPECT_EQ(Z85Encode(input.data(), 8, out, 9), 5);
  EXPECT_EQ(Z85Encode(input.data(), 8, out, 11), 10);
}

TEST(Z85, DecodeNeedsWholeGroups) {
  uint8_t out[8];
  EngineSetLastError(0);
  EXPECT_EQ(Z85Decode("Hell", out, 8), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EngineSetLastError(0);
  EXPECT_EQ(Z85Decode("", out, 8), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
}

TEST(Z85, InvalidCharacterFailsWithoutCode) {
  uint8_t out[8];
  EngineSetLastError(0);
  EXPECT_EQ(Z85Decode("Hell\"", out, 8), -1);
  EXPECT_EQ(EngineGetLastError(), 0u);
}

TEST(Z85, DecodeDropsGroupsBeyondCapacity) {
  uint8_t out[8];
  EXPECT_EQ(Z85Decode("HelloWorld", out, 7), 4);
}

}  // namespace
}  // namespace fe::test
