#include <gtest/gtest.h>

#include "test_support.h"

namespace fe::test {
namespace {

TEST(Base85, FourZeroBytesAreZ) {
  EXPECT_EQ(Encode(Bytes{0, 0, 0, 0}, dataEncodeBase85), "z");
}

TEST(Base85, NonZeroGroupIsFiveCharacters) {
  EXPECT_EQ(Encode(Bytes{0, 0, 0, 1}, dataEncodeBase85), "!!!!\"");
}

TEST(Base85, EmptyInputIsInvalidParameter) {
  char out[8] = {'x'};
  EngineSetLastError(0);
  EXPECT_EQ(EncodeBuffer("", 0, out, 8, dataEncodeBase85), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_EQ(out[0], '\0');
}

TEST(Base85, KnownText) {
  EXPECT_EQ(Encode("Man ", dataEncodeBase85), "9jqo^");
  EXPECT_EQ(Encode("Man", dataEncodeBase85), "9jqo");
  EXPECT_EQ(ToString(Decode("9jqo^", dataDecodeBase85)), "Man ");
  EXPECT_EQ(ToString(Decode("9jqo", dataDecodeBase85)), "Man");
}

TEST(Base85, PartialGroupsWriteOneMoreCharacterThanBytes) {
  EXPECT_EQ(Encode(Bytes{0xFF}, dataEncodeBase85).size(), 2u);
  EXPECT_EQ(Encode(Bytes{0xFF, 0}, dataEncodeBase85).size(), 3u);
  EXPECT_EQ(Encode(Bytes{0, 0, 0}, dataEncodeBase85), "!!!!");
}

TEST(Base85, GroupsThatDoNotFitAreDroppedSilently) {
  const Bytes input = RandomBytes(12, 40);
  char out[32];
  // Room for two groups and the terminator: the third group is left out.
  EXPECT_EQ(Base85Encode(input.data(), 12, out, 14), 10);
  EXPECT_EQ(std::string(out), Encode(Bytes(input.begin(), input.begin() + 8), dataEncodeBase85));
}

TEST(Base85, OutputFilledToCapacityIsInsufficientBuffer) {
  const Bytes input = {1, 2, 3, 4};
  char out[8];
  EngineSetLastError(0);
  EXPECT_EQ(Base85Encode(input.data(), 4, out, 5), -1);
  EXPECT_EQ(EngineGetLastError(), 122u);
  EXPECT_EQ(Base85Encode(input.data(), 4, out, 6), 5);
}

TEST(Base85, DecodingSkipsCharactersOutsideTheRange) {
  EXPECT_EQ(ToString(Decode("9j qo\r\n^", dataDecodeBase85)), "Man ");
  EXPECT_EQ(ToString(Decode("~9jqo^{|}", dataDecodeBase85)), "Man ");
}

TEST(Base85, ZInsideAGroupFails) {
  int32_t result = 0;
  Decode("9jzqo^", dataDecodeBase85, &result);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(Decode("z9jqo^", dataDecodeBase85), (Bytes{0, 0, 0, 0, 'M', 'a', 'n', ' '}));
}

TEST(Base85, SingleLeftoverCharacterGivesNothing) {
  EXPECT_EQ(ToString(Decode("9jqo^9", dataDecodeBase85)), "Man ");
}

TEST(Base85, DecodingStopsWhenFourBytesNoLongerFit) {
  int32_t result = 0;
  EXPECT_EQ(ToString(Decode("9jqo^9jqo^", dataDecodeBase85, &result, 7)), "Man ");
  EXPECT_EQ(result, 4);
}

TEST(Base85, EmptyTextIsInvalidParameter) {
  uint8_t out[4];
  EngineSetLastError(0);
  EXPECT_EQ(Base85Decode("", -1, out, 4), -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
}

}  // namespace
}  // namespace fe::test
