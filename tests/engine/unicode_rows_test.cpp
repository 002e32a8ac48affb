// UTF-7 and UTF-8 rows of the dispatch. The same vectors run on the Windows
// build, where the conversions are the system's own code pages 65000 and
// 65001: both builds must give these bytes.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace fe::test {
namespace {

std::string EncodeUnicode(const std::u16string& text, uint32_t encoding, int32_t* result = nullptr,
                          int32_t size = 256) {
  std::vector<char> out(static_cast<size_t>(size) + 1, 'x');
  const int32_t n =
      EncodeBuffer(text.data(), static_cast<int32_t>(text.size()), out.data(), size, encoding);
  if (result) *result = n;
  return n < 0 ? "<fail>" : std::string(out.data(), static_cast<size_t>(n));
}

// Decodes and returns the code units without the counted terminator.
std::u16string DecodeUnicode(const std::string& text, uint32_t encoding, int32_t* result = nullptr,
                             int32_t size = 256) {
  std::u16string out(static_cast<size_t>(size), u'\xFFFF');
  const int32_t n = DecodeBuffer(text.c_str(), out.data(), size, encoding);
  if (result) *result = n;
  if (n < 1) return u"<fail>";
  out.resize(static_cast<size_t>(n));
  EXPECT_EQ(out.back(), u'\0');
  out.pop_back();
  return out;
}

TEST(Utf8Row, EncodesAcrossAllLengths) {
  EXPECT_EQ(EncodeUnicode(u"a\u00e9\u20ac\U0001F600", dataEncodeUTF8),
            "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80");
}

TEST(Utf8Row, LoneSurrogateBecomesReplacementCharacter) {
  EXPECT_EQ(EncodeUnicode(std::u16string{u'a', char16_t(0xD800), u'b'}, dataEncodeUTF8),
            "a\xef\xbf\xbd"
            "b");
  EXPECT_EQ(EncodeUnicode(std::u16string{char16_t(0xDC00)}, dataEncodeUTF8), "\xef\xbf\xbd");
}

TEST(Utf8Row, DecodeCountsTheTerminator) {
  int32_t result = 0;
  EXPECT_EQ(DecodeUnicode("a\xc3\xa9", dataDecodeUTF8, &result), u"a\u00e9");
  EXPECT_EQ(result, 3);
  EXPECT_EQ(DecodeUnicode("\xf0\x9f\x98\x80", dataDecodeUTF8, &result), u"\U0001F600");
  EXPECT_EQ(result, 3);
}

TEST(Utf8Row, EmptyTextDecodesToTheTerminatorAlone) {
  int32_t result = 0;
  EXPECT_EQ(DecodeUnicode("", dataDecodeUTF8, &result), u"");
  EXPECT_EQ(result, 1);
}

TEST(Utf8Row, InvalidSequencesFailDecoding) {
  for (const char* text : {"\xc3", "\xc3(", "\x80", "\xc0\xaf", "\xe0\x80\xaf", "\xed\xa0\x80",
                           "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80", "\xff", "ok\xe2\x82"}) {
    int32_t result = 1;
    EngineSetLastError(0);
    DecodeUnicode(text, dataDecodeUTF8, &result);
    EXPECT_EQ(result, 0) << text;
    EXPECT_EQ(EngineGetLastError(), 1113u) << text;
  }
}

TEST(Utf8Row, EncodeIntoTooSmallBufferGivesZero) {
  int32_t result = -1;
  EXPECT_EQ(EncodeUnicode(u"\u20ac\u20ac", dataEncodeUTF8, &result, 5), "");
  EXPECT_EQ(result, 0);
}

TEST(Utf8Row, ConversionFillingTheBufferHasNoTerminator) {
  int32_t result = -1;
  EXPECT_EQ(EncodeUnicode(u"abcd", dataEncodeUTF8, &result, 4), "abcd");
  EXPECT_EQ(result, 4);
}

TEST(Utf8Row, EmbeddedNulEndsTheCount) {
  int32_t result = -1;
  EncodeUnicode(std::u16string{u'a', u'\0', u'b'}, dataEncodeUTF8, &result);
  EXPECT_EQ(result, 1);
}

TEST(Utf8Row, EmptyInputEncodesToEmptyString) {
  int32_t result = -1;
  EXPECT_EQ(EncodeUnicode(u"", dataEncodeUTF8, &result), "");
  EXPECT_EQ(result, 0);
}

TEST(Utf8Row, DecodeIntoTooSmallBufferGivesZero) {
  int32_t result = -1;
  DecodeUnicode("abc", dataDecodeUTF8, &result, 3);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(EngineGetLastError(), 122u);
}

TEST(Utf7Row, DirectCharactersStayAsTheyAre) {
  const std::u16string text = u"Hi Mom (1,2.3) -'x'/y:z? \t\r\n";
  std::string expected(text.begin(), text.end());
  EXPECT_EQ(EncodeUnicode(text, dataEncodeUTF7), expected);
}

TEST(Utf7Row, PlusIsWrittenPlusMinus) {
  EXPECT_EQ(EncodeUnicode(u"1+1", dataEncodeUTF7), "1+-1");
}

TEST(Utf7Row, OptionalDirectCharactersAreEncoded) {
  EXPECT_EQ(EncodeUnicode(u"!", dataEncodeUTF7), "+ACE-");
  EXPECT_EQ(EncodeUnicode(u"a=b", dataEncodeUTF7), "a+AD0-b");
  EXPECT_EQ(EncodeUnicode(u"~", dataEncodeUTF7), "+AH4-");
}

TEST(Utf7Row, EncodedRunsEndWithMinus) {
  EXPECT_EQ(EncodeUnicode(u"\u00a3", dataEncodeUTF7), "+AKM-");
  EXPECT_EQ(EncodeUnicode(u"\u4f60\u597d", dataEncodeUTF7), "+T2BZfQ-");
  EXPECT_EQ(EncodeUnicode(u"A\u2262\u0391.", dataEncodeUTF7), "A+ImIDkQ-.");
  EXPECT_EQ(EncodeUnicode(u"\u00a3x", dataEncodeUTF7), "+AKM-x");
}

TEST(Utf7Row, PlusAfterAnEncodedRun) {
  EXPECT_EQ(EncodeUnicode(u"\u00a3+", dataEncodeUTF7), "+AKM-+-");
}

TEST(Utf7Row, SurrogatePairsAreEncodedAsCodeUnits) {
  EXPECT_EQ(EncodeUnicode(u"\U0001F600", dataEncodeUTF7), "+2D3eAA-");
}

TEST(Utf7Row, DecodesRuns) {
  EXPECT_EQ(DecodeUnicode("Hi +AKM- x", dataDecodeUTF7), u"Hi \u00a3 x");
  EXPECT_EQ(DecodeUnicode("+T2BZfQ-", dataDecodeUTF7), u"\u4f60\u597d");
  EXPECT_EQ(DecodeUnicode("1+-1", dataDecodeUTF7), u"1+1");
}

TEST(Utf7Row, RunEndsAtAnyCharacterOutsideTheAlphabet) {
  EXPECT_EQ(DecodeUnicode("+AKM.x", dataDecodeUTF7), u"\u00a3.x");
  EXPECT_EQ(DecodeUnicode("+AKM", dataDecodeUTF7), u"\u00a3");
}

TEST(Utf7Row, MinusEndingARunIsAbsorbed) {
  EXPECT_EQ(DecodeUnicode("+AKM--", dataDecodeUTF7), u"\u00a3-");
}

TEST(Utf7Row, OptionalDirectCharactersDecodeAsThemselves) {
  EXPECT_EQ(DecodeUnicode("a=b!~", dataDecodeUTF7), u"a=b!~");
}

TEST(Utf7Row, HighBytesBecomeTheirCodeUnits) {
  EXPECT_EQ(DecodeUnicode("a\xe9z", dataDecodeUTF7), u"a\u00e9z");
}

TEST(Utf7Row, TrailingPlusGivesNothing) {
  EXPECT_EQ(DecodeUnicode("ab+", dataDecodeUTF7), u"ab");
}

TEST(Utf7Row, DecodeDoesNotUseTheStrictFlag) {
  int32_t result = 0;
  DecodeUnicode("+\xff\xfe-", dataDecodeUTF7, &result);
  EXPECT_GT(result, 0);
}

TEST(Utf7Row, RoundTripsEveryBmpUnit) {
  std::u16string text;
  for (uint32_t u = 1; u < 0x10000; u += 7)
    text += static_cast<char16_t>(u);
  std::vector<char> encoded(text.size() * 8 + 16);
  const int32_t n = EncodeBuffer(text.data(), static_cast<int32_t>(text.size()), encoded.data(),
                                 static_cast<int32_t>(encoded.size()), dataEncodeUTF7);
  ASSERT_GT(n, 0);
  std::u16string back(text.size() + 1, u'\0');
  const int32_t m =
      DecodeBuffer(encoded.data(), back.data(), static_cast<int32_t>(back.size()), dataDecodeUTF7);
  ASSERT_EQ(m, static_cast<int32_t>(text.size()) + 1);
  back.pop_back();
  EXPECT_EQ(back, text);
}

}  // namespace
}  // namespace fe::test
