#include <gtest/gtest.h>

#include "reference/qp_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

std::string QpDecode(const std::string& text, int32_t* result = nullptr) {
  return ToString(Decode(text, dataDecodeQuoted, result));
}

// The one-character-at-a-time decoder over the whole text in one piece.
int32_t PlainQpDecode(const std::string& text, Bytes& out, int32_t capacity) {
  QpDecodeState state{};
  return reference::QpDecodeChunk(text.data(), static_cast<int32_t>(text.size()), out.data(),
                                  capacity, &state);
}

TEST(QuotedPrintable, EqualsSignIsEscaped) {
  EXPECT_EQ(Encode("a=b", dataEncodeQuoted), "a=3Db");
}

TEST(QuotedPrintable, AtSignIsEscaped) {
  EXPECT_EQ(Encode("@", dataEncodeQuoted), "=40");
}

TEST(QuotedPrintable, TabBeforeCarriageReturnIsEscaped) {
  EXPECT_EQ(Encode("\t\r", dataEncodeQuoted), "=09=0D");
}

TEST(QuotedPrintable, SpaceBeforeCarriageReturnIsEscaped) {
  EXPECT_EQ(Encode("a \r\n", dataEncodeQuoted), "a=20=0D=0A");
}

TEST(QuotedPrintable, SpaceAtTheEndStays) {
  EXPECT_EQ(Encode("a ", dataEncodeQuoted), "a ");
}

TEST(QuotedPrintable, EscapeSetAndPrintableRange) {
  EXPECT_EQ(Encode("!\"#$@[\\]^`{|}=", dataEncodeQuoted),
            "=21=22=23=24=40=5B=5C=5D=5E=60=7B=7C=7D=3D");
  EXPECT_EQ(Encode("%&'()*+,-./:;<>?_~", dataEncodeQuoted), "%&'()*+,-./:;<>?_~");
  EXPECT_EQ(Encode(std::string("\x00\x1f\x7f\x80\xff", 5), dataEncodeQuoted), "=00=1F=7F=80=FF");
}

TEST(QuotedPrintable, WrappedLinesBreakAfterColumnSeventyTwo) {
  const std::string text = Encode(std::string(100, 'a'), dataEncodeQuoted | dataEncodeWrapLines);
  EXPECT_EQ(text, std::string(73, 'a') + "=\r\n" + std::string(27, 'a'));
  // Escapes push the break to 74 or 75 characters.
  const std::string escaped = Encode(std::string(30, '@'), dataEncodeQuoted | dataEncodeWrapLines);
  EXPECT_EQ(escaped.find("=\r\n"), 75u);
}

TEST(QuotedPrintable, CapacityBelowBoundFails) {
  const Bytes input = ToBytes("abcdef");
  char out[32];
  EXPECT_EQ(QpEncode(input.data(), 6, out, 7, 0), -1);
  EXPECT_EQ(QpEncode(input.data(), 6, out, 8, 0), 6);
}

TEST(QuotedPrintable, CapacityCoversOnlyTheFirstCharacterOfAnEscape) {
  // Three bytes need nine characters; capacity 4 lets the second escape
  // start at 3 and end at 6, two past the capacity, and stops there.
  const Bytes input = {0, 0, 0};
  GuardedBuffer out(4 + 2);
  EXPECT_EQ(QpEncode(input.data(), 3, out.chars(), 4, 0), 6);
  EXPECT_EQ(out.text(6), "=00=00");
  EXPECT_TRUE(out.GuardIntact());
}

TEST(QuotedPrintable, DispatchFailsWhereAnEscapeWouldCrossTheBuffer) {
  // Through EncodeBuffer the buffer is outputSize: an escape or terminator
  // that would cross it fails instead.
  const Bytes input = {'a', 'a', 'a', 0};
  for (int32_t size = 1; size <= 12; ++size) {
    GuardedBuffer out(static_cast<size_t>(size));
    const int32_t n = EncodeBuffer(input.data(), 4, out.chars(), size, dataEncodeQuoted);
    EXPECT_TRUE(out.GuardIntact()) << size;
    if (size >= 7) {
      EXPECT_EQ(n, 6) << size;
      EXPECT_STREQ(out.chars(), "aaa=00");
    } else {
      EXPECT_EQ(n, -1) << size;
    }
  }
}

TEST(QuotedPrintable, DecodesEscapes) {
  EXPECT_EQ(QpDecode("=41=42"), "AB");
}

TEST(QuotedPrintable, WhiteSpaceBetweenDigitsIsSkipped) {
  EXPECT_EQ(QpDecode("=4 1"), "A");
}

TEST(QuotedPrintable, InvalidDigitFails) {
  int32_t result = 0;
  QpDecode("=G1", &result);
  EXPECT_EQ(result, -1);
  QpDecode("=4G", &result);
  EXPECT_EQ(result, -1);
}

TEST(QuotedPrintable, SoftLineBreakIsRemoved) {
  EXPECT_EQ(QpDecode("=\r\nx"), "x");
}

TEST(QuotedPrintable, BareSoftBreakDropsTheNextCharacter) {
  EXPECT_EQ(QpDecode("ab=\nxyz"), "abyz");
  EXPECT_EQ(QpDecode("ab=\rxyz"), "abyz");
}

TEST(QuotedPrintable, LowerCaseDigitsAndPlainTextPass) {
  EXPECT_EQ(QpDecode("a=3db\r\nc"), "a=b\r\nc");
}

TEST(QuotedPrintable, TrailingEqualsCarriesToTheNextChunk) {
  QpDecodeState state{};
  uint8_t out[8];
  EXPECT_EQ(QpDecodeChunk("x=", 2, out, 8, &state), 1);
  EXPECT_EQ(state.phase, 1u);
  EXPECT_EQ(QpDecodeChunk("41", 2, out + 1, 7, &state), 1);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 2), "xA");
}

TEST(QuotedPrintable, DecodingStopsAtCapacity) {
  int32_t result = 0;
  EXPECT_EQ(ToString(Decode("abcdef", dataDecodeQuoted, &result, 3)), "abc");
  EXPECT_EQ(result, 3);
}

TEST(QuotedPrintable, DecoderMatchesPlainPhases) {
  std::mt19937 random(21);
  const std::string alphabet = "ab=\r\n 4Ag\t";
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (size_t k = random() % 40; k > 0; --k)
      text += alphabet[random() % alphabet.size()];
    const auto capacity = static_cast<int32_t>(random() % 45);
    Bytes a(64), b(64);
    QpDecodeState state{};
    const int32_t na =
        QpDecodeChunk(text.data(), static_cast<int32_t>(text.size()), a.data(), capacity, &state);
    const int32_t nb = PlainQpDecode(text, b, capacity);
    ASSERT_EQ(na, nb) << text;
    if (na > 0) ASSERT_EQ(Bytes(a.begin(), a.begin() + na), Bytes(b.begin(), b.begin() + nb));
  }
}

// Text with runs of every length between the escapes, so that runs end
// inside and after the eight-byte words the decoder scans and past the
// point where it hands over to memchr.
std::string TextWithRuns(std::mt19937& random, size_t length) {
  static const std::string escapes[] = {"=41", "=7e", "=\r\n", "=\n", "=4 1", "=G0", "=", "=4"};
  std::string text;
  while (text.size() < length) {
    const size_t run = random() % 4 == 0 ? random() % 40 : random() % 10;
    for (size_t k = 0; k < run; ++k)
      text += static_cast<char>("abcxyz019 \t\r\n"[random() % 13]);
    text += escapes[random() % 10 < 7 ? random() % 2 : 2 + random() % 6];
  }
  text.resize(length);
  return text;
}

TEST(QuotedPrintable, DecoderMatchesPlainPhasesOnTextsWithRunsOfEveryLength) {
  std::mt19937 random(76);
  for (size_t length = 0; length <= 1500; ++length) {
    const std::string text = TextWithRuns(random, length);
    const auto capacity =
        static_cast<int32_t>(random() % 3 == 0 ? random() % (length + 1) : length);
    Bytes a(length + 8, 0xA5), b = a;
    QpDecodeState state{};
    const int32_t na =
        QpDecodeChunk(text.data(), static_cast<int32_t>(text.size()), a.data(), capacity, &state);
    ASSERT_EQ(na, PlainQpDecode(text, b, capacity)) << text;
    ASSERT_EQ(a, b) << text;
  }
}

// The state carries an escape, a soft break or a run across any split.
TEST(QuotedPrintable, DecodingInPiecesMatchesOnePass) {
  std::mt19937 random(77);
  for (size_t length = 0; length <= 1500; length += 1 + random() % 5) {
    const std::string text = TextWithRuns(random, length);
    Bytes whole(length + 8);
    const int32_t expected = PlainQpDecode(text, whole, static_cast<int32_t>(length));
    QpDecodeState state{};
    Bytes pieces;
    int32_t result = 0;
    for (size_t at = 0; at < length && result >= 0;) {
      const size_t piece = std::min<size_t>(length - at, 1 + random() % 50);
      Bytes out(piece + 8);
      result = QpDecodeChunk(text.data() + at, static_cast<int32_t>(piece), out.data(),
                             static_cast<int32_t>(piece), &state);
      if (result > 0) pieces.insert(pieces.end(), out.begin(), out.begin() + result);
      at += piece;
    }
    if (expected < 0) {
      ASSERT_LT(result, 0) << text;
    } else {
      ASSERT_GE(result, 0) << text;
      ASSERT_EQ(pieces, Bytes(whole.begin(), whole.begin() + expected)) << text;
    }
  }
}

}  // namespace
}  // namespace fe::test
