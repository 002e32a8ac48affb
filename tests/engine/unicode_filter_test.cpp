// FilterUnicodeWide / FilterUnicodeText and IsConfusableWide /
// IsConfusableText.
#include <gtest/gtest.h>

#include <string>

#include "file_encoder.h"
#include "text/unicode_classes.h"

namespace {

std::u16string Filter(const std::u16string& text) {
  const int32_t size = FilterUnicodeWide(text.c_str(), nullptr, 0);
  EXPECT_EQ(EngineGetLastError(), 0u);
  std::u16string out(static_cast<size_t>(size) + 1, u'\0');
  EXPECT_EQ(FilterUnicodeWide(text.c_str(), out.data(), size + 1), size);
  out.resize(static_cast<size_t>(size));
  return out;
}

std::string FilterText(const std::string& text) {
  const auto length = static_cast<int32_t>(text.size());
  const int32_t size = FilterUnicodeText(text.data(), length, nullptr, 0);
  std::string out(static_cast<size_t>(size) + 1, '\0');
  EXPECT_EQ(FilterUnicodeText(text.data(), length, out.data(), size + 1), size);
  out.resize(static_cast<size_t>(size));
  return out;
}

TEST(UnicodeFilter, CyrillicLetterAmongLatinBecomesLatinAndIsConfusable) {
  EXPECT_EQ(Filter(u"\u0430pple"), u"apple");
  EXPECT_EQ(IsConfusableWide(u"\u0430pple"), 1);
  EXPECT_EQ(FilterText("\xD0\xB0pple"), "apple");
  EXPECT_EQ(IsConfusableText("\xD0\xB0pple", -1), 1);
}

TEST(UnicodeFilter, AccentAndLigatureDecompose) {
  EXPECT_EQ(Filter(u"\u00E9"), u"e");
  EXPECT_EQ(Filter(u"\uFB01"), u"fi");
  EXPECT_EQ(FilterText("caf\xC3\xA9"), "cafe");
}

TEST(UnicodeFilter, TabIsRemovedVerticalTabAndFormFeedBecomeBlanks) {
  EXPECT_EQ(Filter(u"a\tb\vc\fd"), u"ab c d");
}

TEST(UnicodeFilter, MathematicalBoldCapitalA) {
  EXPECT_EQ(Filter(u"\U0001D400"), u"A");
  EXPECT_EQ(Filter(u"\U0001D41A\U0001D7CE\U0001D51C"), u"a0Y");
}

TEST(UnicodeFilter, EmojiOnlyGivesAnEmptyResult) {
  EXPECT_EQ(FilterUnicodeWide(u"\U0001F600\U0001F680\u2764\uFE0F", nullptr, 0), 0);
  EXPECT_EQ(EngineGetLastError(), 0u);
}

TEST(UnicodeFilter, AsciiIsNeverConfusableButALeadingByteOrderMarkIs) {
  EXPECT_EQ(IsConfusableWide(u"plain ASCII text"), 0);
  EXPECT_EQ(IsConfusableWide(u"\uFEFFplain"), 1);
  EXPECT_EQ(IsConfusableText("\xEF\xBB\xBFplain", -1), 1);
}

TEST(UnicodeFilter, NoAsciiCharacterIsConfusable) {
  for (char16_t c = 1; c < 0x80; ++c) {
    const char16_t text[2] = {c, 0};
    EXPECT_EQ(IsConfusableWide(text), 0) << static_cast<int>(c);
    const char bytes[2] = {static_cast<char>(c), 0};
    EXPECT_EQ(IsConfusableText(bytes, 1), 0) << static_cast<int>(c);
  }
}

TEST(UnicodeFilter, ControlsBidiOverridesPrivateUseAndNonCharactersGo) {
  EXPECT_EQ(Filter(u"a\u0001\u007F\u0085\u202Eb\uE000\uFDD0\uFFFE\uFEFFc"), u"abc");
  EXPECT_EQ(Filter(u"a\U000F0000\U0010FFFDb"), u"ab");
}

TEST(UnicodeFilter, UnpairedSurrogatesAndUndecodableBytesAreDropped) {
  EXPECT_EQ(Filter(std::u16string(u"a") + char16_t(0xD800) + u"b" + char16_t(0xDC00)), u"ab");
  EXPECT_EQ(FilterText(std::string("a\xFF\xC0\xAF"
                                   "b\0c",
                                   7)),
            "abc");
}

TEST(UnicodeFilter, LookAlikesSpacesAndDashes) {
  EXPECT_EQ(Filter(u"\u0391\u0392\u0393"), u"AB\u0393");
  EXPECT_EQ(Filter(u"a\u2003b\u2014c\u2022d"), u"a b-c.d");
  EXPECT_EQ(Filter(u"\u00D8resund"), u"Oresund");
}

TEST(UnicodeFilter, TrimsSpaceAtBothEndsOnly) {
  EXPECT_EQ(Filter(u" \u3000 a  b \u00A0"), u"a  b");
}

TEST(UnicodeFilter, ResultIsWrittenOnlyWhenItFits) {
  char16_t out[4] = {u'x', u'x', u'x', u'x'};
  EXPECT_EQ(FilterUnicodeWide(u"abcd", out, 4), 0);
  EXPECT_EQ(out[0], u'x');
  EXPECT_EQ(FilterUnicodeWide(u"abc", out, 4), 3);
  EXPECT_EQ(std::u16string(out), u"abc");
  char bytes[3] = {'x', 'x', 'x'};
  EXPECT_EQ(FilterUnicodeText("\xC3\xA9t\xC3\xA9", -1, bytes, 3), 0);
  EXPECT_EQ(bytes[0], 'x');
}

TEST(UnicodeFilter, ArgumentErrors) {
  char16_t out[4];
  FilterUnicodeWide(nullptr, out, 4);
  EXPECT_EQ(EngineGetLastError(), 87u);
  FilterUnicodeWide(u"a", out, -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_EQ(FilterUnicodeWide(u"", out, 4), 0);
  EXPECT_EQ(EngineGetLastError(), 0u);
  EXPECT_EQ(IsConfusableWide(nullptr), 0);
  EXPECT_EQ(IsConfusableText(nullptr, -1), 0);
  EXPECT_EQ(IsConfusableText("", 0), 0);
}

TEST(UnicodeClasses, ConfusableMapFirstMatchWins) {
  EXPECT_EQ(fe::text::MapConfusable(0x212B), 0x00C5u);
  EXPECT_EQ(fe::text::MapConfusable(0x01C0),
            static_cast<uint32_t>('l'));  // listed first as l, later as |
  EXPECT_EQ(fe::text::MapConfusable(0x1F170), static_cast<uint32_t>('O'));
  EXPECT_EQ(fe::text::MapConfusable(0x05DF), static_cast<uint32_t>('1'));
  EXPECT_EQ(fe::text::MapConfusable(0x4E00), 0x4E00u);
}

TEST(UnicodeClasses, SpoofingCharacters) {
  for (uint32_t c :
       {0xFEFFu, 0x200Bu, 0x061Cu, 0xE0001u, 0x2212u, 0x30FBu, 0x3164u, 0x1FFFEu, 0x2029u}) {
    EXPECT_TRUE(fe::text::IsSpoofingCharacter(c)) << std::hex << c;
  }
  EXPECT_FALSE(fe::text::IsSpoofingCharacter(0x2065));
  EXPECT_FALSE(fe::text::IsSpoofingCharacter(0x00E9));
}

}  // namespace
