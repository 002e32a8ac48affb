// The yEnc body coders against the byte-at-a-time loops of the format at
// every length up to 4096, from every column of a line and in random
// pieces. make test runs this suite at every instruction-set level
// (FE_CPU), so the vector kernels and the byte loops both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "codecs/yenc_body.h"
#include "codecs/yenc_kernels.h"
#include "cpu/cpu_level.h"
#include "reference/yenc_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr size_t kLongest = 4096;

// Bytes whose raised values are critical, mixed into random data at a rate
// that changes with `seed`, so that escapes land in every place of a step.
Bytes EscapeHeavyBytes(size_t size, uint32_t seed) {
  Bytes data = RandomBytes(size, seed);
  std::mt19937 random(seed);
  const uint32_t rate = seed % 4;  // none, a quarter, half, three quarters
  for (auto& b : data) {
    if (random() % 4 < rate) b = static_cast<uint8_t>(256 - 42 + "\0\t\n\r.="[random() % 6]);
  }
  return data;
}

std::string EncodedInPieces(const Bytes& data, size_t* lineUsed, std::mt19937& random) {
  std::string text;
  for (size_t at = 0; at < data.size();) {
    const size_t piece = std::min<size_t>(data.size() - at, 1 + random() % 300);
    // Exactly the room the coder asks for, so a store past it shows.
    std::vector<char> out(codecs::YencEncodedRoom(piece));
    const size_t made = codecs::EncodeYencBody(data.data() + at, piece, out.data(), lineUsed);
    text.append(out.data(), made);
    at += piece;
  }
  return text;
}

TEST(YencKernels, EncoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(11);
  for (size_t length = 0; length <= kLongest; ++length) {
    const Bytes data = EscapeHeavyBytes(length, static_cast<uint32_t>(length));
    const size_t startColumn = random() % 128;
    size_t fastUsed = startColumn, plainUsed = startColumn;
    const std::string fast = EncodedInPieces(data, &fastUsed, random);
    const std::string plain = reference::YencEncodeBody(data.data(), data.size(), &plainUsed);
    ASSERT_EQ(fast, plain) << "length " << length << " from column " << startColumn;
    ASSERT_EQ(fastUsed, plainUsed) << "length " << length;
  }
}

TEST(YencKernels, AnEscapePairCrossingTheLastColumnMakesA129CharacterLine) {
  // 0xD6 raises to '\0', always escaped.
  for (size_t column : {0u, 1u, 63u, 64u, 126u, 127u}) {
    const Bytes data(256, 0xD6);
    size_t fastUsed = column, plainUsed = column;
    std::vector<char> out(codecs::YencEncodedRoom(data.size()));
    const size_t made = codecs::EncodeYencBody(data.data(), data.size(), out.data(), &fastUsed);
    EXPECT_EQ(std::string(out.data(), made),
              reference::YencEncodeBody(data.data(), data.size(), &plainUsed))
        << column;
    EXPECT_EQ(fastUsed, plainUsed);
  }
}

// A data line of `length` characters: the encoding of random bytes with
// escapes, line ends, NULs and runs of '=' put in at random places.
std::string NoisyLine(std::mt19937& random, size_t length) {
  const Bytes data = EscapeHeavyBytes(length, static_cast<uint32_t>(random()));
  size_t used = 0;
  std::string line = reference::YencEncodeBody(data.data(), data.size(), &used);
  line.resize(length, 'q');
  static const std::string noise("==\r\n\0=\r=\n", 9);
  Damage(random, line, noise);
  if (length >= 2 && random() % 2 == 0) line.replace(length - 2, 2, "\r\n");
  return line;
}

void ExpectLineDecodesAsThePlainLoop(const std::string& line) {
  // Exactly the room the decoder asks for.
  std::vector<uint8_t> fast(line.size() + 64);
  size_t made = 0;
  const bool fastOk = codecs::DecodeYencLine(line.data(), line.size(), fast.data(), &made);
  std::vector<uint8_t> plain;
  const bool plainOk = reference::YencDecodeLine(line, &plain);
  ASSERT_EQ(fastOk, plainOk) << testing::PrintToString(line);
  if (!plainOk) return;
  fast.resize(made);
  ASSERT_EQ(fast, plain) << testing::PrintToString(line);
}

TEST(YencKernels, DecoderAgreesWithThePlainLoopAtEveryLineLength) {
  std::mt19937 random(12);
  for (size_t length = 0; length < kLongest; ++length) {
    ExpectLineDecodesAsThePlainLoop(NoisyLine(random, length));
  }
}

TEST(YencKernels, EscapesAtTheEdgeOfAVectorStep) {
  const std::string plain(130, 'a');
  for (size_t at : {0u, 62u, 63u, 64u, 126u, 127u, 128u, 129u}) {
    std::string line = plain;
    line[at] = '=';  // takes the next 'a', or fails at the line's end
    ExpectLineDecodesAsThePlainLoop(line);
    ExpectLineDecodesAsThePlainLoop(line.substr(0, at + 1));  // the escape ends the line
    if (at + 2 < line.size()) {
      for (char next : {'\r', '\n', '=', '\0'}) {
        std::string followed = line;
        followed[at + 1] = next;
        ExpectLineDecodesAsThePlainLoop(followed);
      }
    }
  }
}

TEST(YencKernels, RunsOfEscapesTakeEveryOtherOne) {
  for (size_t run = 1; run <= 70; ++run) {
    ExpectLineDecodesAsThePlainLoop(std::string(run, '=') + "ab\r\n");
    ExpectLineDecodesAsThePlainLoop(std::string(60, 'x') + std::string(run, '='));
  }
}

TEST(YencKernels, ChosenOnlyWithAvx512) {
  EXPECT_EQ(codecs::ChosenYencKernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
