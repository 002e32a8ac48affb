// The quoted-printable chunk decoder against the character-at-a-time
// phases at every length up to 4096, split at random places into chunks of
// random capacity. make test runs this suite at every instruction-set
// level (FE_CPU), so the vector kernel and the run copies both face it.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "chunk_pieces.h"
#include "codecs/codec_internal.h"
#include "codecs/qp_kernels.h"
#include "cpu/cpu_level.h"
#include "reference/qp_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

bool SameState(const QpDecodeState& a, const QpDecodeState& b) {
  return a.phase == b.phase && a.high == b.high && a.low == b.low;
}

void ExpectChunkedDecodingAgrees(std::mt19937& random, const std::string& text) {
  QpDecodeState fast{}, plain{};
  ExpectSameInPieces<uint8_t>(
      static_cast<int32_t>(text.size()), random, &fast, &plain,
      // Mostly room for the piece; now and then a stop anywhere.
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 2u)) : piece + 1;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return QpDecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return reference::QpDecodeChunk(text.data() + at, piece, out, capacity, state);
      },
      SameState);
}

// Encoded random data (wrapped for odd lengths, so with soft line breaks),
// cut to `length` characters, with up to three characters replaced by ones
// the phases treat specially.
std::string DamagedText(std::mt19937& random, int32_t length) {
  const uint32_t flags = dataEncodeQuoted | (length % 2 ? dataEncodeWrapLines : 0);
  std::string text = Encode(RandomBytes(static_cast<size_t>(length), random()), flags);
  text.resize(static_cast<size_t>(length), 'q');
  static const std::string noise("=\r\n \t4fG\x80\xFF\0", 11);
  Damage(random, text, noise);
  return text;
}

TEST(QpKernels, DecoderAgreesWithThePlainPhasesAtEveryLength) {
  std::mt19937 random(7676);
  for (int32_t length = 0; length <= 4096; ++length)
    ExpectChunkedDecodingAgrees(random, DamagedText(random, length));
}

// Escapes and soft line breaks of every form, in runs, next to each other
// and across the 64-character steps: "=\r\n=41" and "=\n=" swallow an '='.
TEST(QpKernels, DecoderAgreesOnEveryFormOfEscape) {
  std::mt19937 random(7677);
  static const std::string pieces[] = {"=41", "=7e", "=\r\n", "=\n", "=\r=", "=\n=41", "=4 1",
                                       "=G0", "=",   "=4",    "a",   "bc",   "\r\n",   "=\r\n="};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (size_t k = random() % 120; k > 0; --k)
      text += pieces[random() % 14];
    ExpectChunkedDecodingAgrees(random, text);
  }
}

// A full buffer stops the decoder right after a byte, before the soft line
// break or escape that follows it: every capacity over wrapped text.
TEST(QpKernels, EveryCapacityStopsWhereThePlainPhasesStop) {
  const std::string text =
      Encode(RandomBytes(300, 8), dataEncodeQuoted | dataEncodeWrapLines) + "=\r\nab=\n";
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t capacity = 0; capacity <= 310; ++capacity) {
    QpDecodeState fast{}, plain{};
    Bytes a(320, 0xA5), b = a;
    ASSERT_EQ(QpDecodeChunk(text.data(), length, a.data(), capacity, &fast),
              reference::QpDecodeChunk(text.data(), length, b.data(), capacity, &plain))
        << "capacity " << capacity;
    ASSERT_EQ(a, b) << "capacity " << capacity;
    ASSERT_TRUE(SameState(fast, plain)) << "capacity " << capacity;
  }
}

TEST(QpKernels, EveryByteAtEveryPositionDecodesAsThePlainPhases) {
  const std::string clean = Encode(RandomBytes(40, 6), dataEncodeQuoted | dataEncodeWrapLines);
  ASSERT_GE(clean.size(), 90u);
  ExpectEveryByteAtEveryPositionAgrees<QpDecodeState>(clean.substr(0, 90), 80, QpDecodeChunk,
                                                      reference::QpDecodeChunk);
}

// Bytes of every kind the encoder treats apart: letters written as they
// are, listed and control bytes, blanks before CR and elsewhere, bytes from
// 128 up; the mix changes with the seed, so lines hold few or many escapes.
Bytes MixedBytes(size_t size, uint32_t seed) {
  std::mt19937 random(seed);
  static const std::string special("=! \t\r\n@~`\x7F\x80\xFF\0", 13);
  const uint32_t rate = seed % 5;
  Bytes data(size);
  for (auto& b : data) {
    const uint32_t pick = random() % 5;
    b = pick < rate
            ? static_cast<uint8_t>('a' + random() % 26)
            : static_cast<uint8_t>(pick == 4 ? special[random() % special.size()] : random());
  }
  return data;
}

void ExpectEncodingAgrees(const Bytes& data, int32_t capacity, bool wrap) {
  const auto length = static_cast<int32_t>(data.size());
  std::vector<char> fast(static_cast<size_t>(capacity) + 2 + 8, '#');
  const int32_t count = QpEncode(data.data(), length, fast.data(), capacity, wrap);
  std::string plain;
  const int64_t expected =
      reference::QpEncode(data.data(), length, capacity, wrap, int64_t{capacity} + 2, &plain);
  ASSERT_EQ(count, expected) << "length " << length << " capacity " << capacity;
  if (count < 0) return;
  ASSERT_EQ(std::string(fast.data(), static_cast<size_t>(count)), plain) << "length " << length;
  // Nothing is written after the last character.
  ASSERT_EQ(std::string(fast.begin() + count, fast.end()),
            std::string(fast.size() - static_cast<size_t>(count), '#'));
}

TEST(QpKernels, EncoderAgreesWithThePlainEncoderAtEveryLength) {
  std::mt19937 random(1776);
  for (int32_t length = 0; length <= 4096; ++length) {
    const Bytes data = MixedBytes(static_cast<size_t>(length), static_cast<uint32_t>(length));
    // The least capacity accepted, which stops most inputs early, or room
    // for everything.
    const int32_t least = length + length / 3;
    const int32_t capacity = random() % 2 == 0 ? least + static_cast<int32_t>(random() % 8)
                                               : 3 * length + length / 20 + 4;
    ExpectEncodingAgrees(data, capacity, length % 2 == 1);
  }
}

// Every capacity over one input: the kernel hands over wherever its widest
// step would not fit, and an escape may run two characters past the
// capacity.
TEST(QpKernels, EncoderAgreesAtEveryCapacity) {
  const Bytes data = MixedBytes(300, 3);
  for (int32_t capacity = 400; capacity <= 950; ++capacity) {
    ExpectEncodingAgrees(data, capacity, true);
    ExpectEncodingAgrees(data, capacity, false);
  }
}

// A step's soft line break wherever its line has got to: the first step
// holds 0 to 16 escapes (so the next starts at every even column from 16 to
// 48), then come steps of escapes only, of every second byte escaped, or of
// mixed bytes.
TEST(QpKernels, SoftBreaksFallWhereThePlainEncoderPutsThem) {
  for (size_t escapes = 0; escapes <= 16; ++escapes) {
    for (int kind = 0; kind < 3; ++kind) {
      Bytes data(16, 'a');
      std::fill_n(data.begin(), escapes, '=');
      const Bytes rest = MixedBytes(200, static_cast<uint32_t>(escapes));
      for (size_t k = 0; k < rest.size(); ++k)
        data.push_back(kind == 0 ? '=' : kind == 1 ? (k % 2 ? 'b' : '{') : rest[k]);
      ExpectEncodingAgrees(data, static_cast<int32_t>(3 * data.size() + 20), true);
    }
  }
}

// The file form's pieces, each encoded alone by the plain encoder with the
// room a piece needs.
std::string EachPieceAlone(const Bytes& data) {
  std::string text;
  for (size_t at = 0; at < data.size(); at += 16) {
    const auto n = static_cast<int32_t>(std::min<size_t>(16, data.size() - at));
    std::string piece;
    EXPECT_GE(reference::QpEncode(data.data() + at, n, 48, true, 50, &piece), 0);
    text += piece;
  }
  return text;
}

std::string FilePieces(const Bytes& data) {
  std::vector<char> out(3 * data.size() + 64, '#');
  const size_t made = codecs::QpEncodePieces(data.data(), data.size(), out.data());
  EXPECT_LE(made, 3 * data.size());
  // Nothing is written after the last character.
  EXPECT_EQ(std::string(out.begin() + static_cast<ptrdiff_t>(made), out.end()),
            std::string(out.size() - made, '#'));
  return std::string(out.data(), made);
}

TEST(QpKernels, FilePiecesAgreeWithEachPieceEncodedAloneAtEveryLength) {
  for (size_t length = 0; length <= 4096; ++length) {
    const Bytes data = MixedBytes(length, static_cast<uint32_t>(length + 9));
    ASSERT_EQ(FilePieces(data), EachPieceAlone(data)) << "length " << length;
  }
}

// A blank that ends a piece is its input's last byte: it stays as it is
// even before a CR, which the next piece escapes.
TEST(QpKernels, BlankEndingAFilePieceStaysBeforeACr) {
  Bytes data(32, 'a');
  data[15] = ' ';
  data[16] = '\r';
  EXPECT_EQ(FilePieces(data), std::string(15, 'a') + " =0D" + std::string(15, 'a'));
  data[15] = 'a';
  data[14] = '\t';
  data[15] = '\r';
  data[16] = 'a';
  EXPECT_EQ(FilePieces(data), std::string(14, 'a') + "=09=0D" + std::string(16, 'a'));
  for (size_t at = 0; at + 1 < 48; ++at) {
    for (uint8_t blank : {' ', '\t'}) {
      Bytes line(48, 'z');
      line[at] = blank;
      line[at + 1] = '\r';
      ASSERT_EQ(FilePieces(line), EachPieceAlone(line)) << "at " << at;
    }
  }
}

TEST(QpKernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenQpKernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
