// The argument rules on their own, for the options and names that the file
// methods will take.
#include <gtest/gtest.h>

#include "com_client.h"
#include "marshalling.h"

namespace fe::test {
namespace {

using ocx::GetOptionalInteger;
using ocx::GetUtf8Argument;

TEST(IntegerOption, SixteenBitMinusOneArrivesAs65535) {
  Variant value;
  value->vt = VT_I2;
  value->iVal = -1;
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(value.get(), 7, &result), S_OK);
  EXPECT_EQ(result, 65535u);
}

TEST(IntegerOption, ThirtyTwoBitMinusOneArrivesAs65535) {
  Variant value(-1);
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(value.get(), 7, &result), S_OK);
  EXPECT_EQ(result, 65535u);
  Variant lowest(-32768);
  ASSERT_EQ(GetOptionalInteger(lowest.get(), 7, &result), S_OK);
  EXPECT_EQ(result, 32768u);
}

TEST(IntegerOption, MinusFortyThousandArrivesUnchanged) {
  Variant value(-40000);
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(value.get(), 7, &result), S_OK);
  EXPECT_EQ(result, static_cast<DWORD>(-40000));
}

TEST(IntegerOption, OmittedGivesTheDefault) {
  VARIANT missing;
  Variant::Missing(&missing);
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(&missing, 7, &result), S_OK);
  EXPECT_EQ(result, 7u);
  Variant empty;
  ASSERT_EQ(GetOptionalInteger(empty.get(), 9, &result), S_OK);
  EXPECT_EQ(result, 9u);
  EXPECT_EQ(GetOptionalInteger(nullptr, 9, &result), E_INVALIDARG);
}

TEST(IntegerOption, TextIsConvertedOrRefused) {
  Variant number(L"300");
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(number.get(), 7, &result), S_OK);
  EXPECT_EQ(result, 300u);
  Variant word(L"many");
  EXPECT_EQ(GetOptionalInteger(word.get(), 7, &result), DISP_E_TYPEMISMATCH);
}

TEST(IntegerOption, ByReferenceValuesAreConverted) {
  LONG stored = 1234;
  VARIANT value;
  value.vt = VT_BYREF | VT_I4;
  value.plVal = &stored;
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(&value, 7, &result), S_OK);
  EXPECT_EQ(result, 1234u);
}

TEST(IntegerOption, ByReferenceNegativeValuesAreFoldedToo) {
  SHORT shortValue = -1;
  VARIANT shortRef;
  shortRef.vt = VT_BYREF | VT_I2;
  shortRef.piVal = &shortValue;
  LONG longValue = -1;
  VARIANT longRef;
  longRef.vt = VT_BYREF | VT_I4;
  longRef.plVal = &longValue;
  // A script variable: a by-reference variant holding a 32-bit integer.
  Variant held(-32768);
  VARIANT variantRef = ByReference(held.get());
  DWORD result = 0;
  ASSERT_EQ(GetOptionalInteger(&shortRef, 7, &result), S_OK);
  EXPECT_EQ(result, 65535u);
  ASSERT_EQ(GetOptionalInteger(&longRef, 7, &result), S_OK);
  EXPECT_EQ(result, 65535u);
  ASSERT_EQ(GetOptionalInteger(&variantRef, 7, &result), S_OK);
  EXPECT_EQ(result, 32768u);
  longValue = -40000;
  ASSERT_EQ(GetOptionalInteger(&longRef, 7, &result), S_OK);
  EXPECT_EQ(result, static_cast<DWORD>(-40000));
}

TEST(StringArgument, NumberIsUsedAsItsDecimalText) {
  Variant number(123);
  std::string text;
  bool present = false;
  ASSERT_EQ(GetUtf8Argument(*number, &text, &present), S_OK);
  EXPECT_TRUE(present);
  EXPECT_EQ(text, "123");
}

TEST(StringArgument, TextBecomesUtf8) {
  Variant name(L"caf\u00e9.txt");
  std::string text;
  bool present = false;
  ASSERT_EQ(GetUtf8Argument(*name, &text, &present), S_OK);
  EXPECT_EQ(text, "caf\xc3\xa9.txt");
}

TEST(StringArgument, OmittedIsAbsent) {
  VARIANT missing;
  Variant::Missing(&missing);
  std::string text = "x";
  bool present = true;
  ASSERT_EQ(GetUtf8Argument(missing, &text, &present), S_OK);
  EXPECT_FALSE(present);
}

}  // namespace
}  // namespace fe::test
