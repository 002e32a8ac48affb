// Utf8Validate: the automaton's verdicts, the zero-byte stop, the
// byte-order mark, the codes, and the ASCII and vector fast paths against a
// plain decoder written out in full.
#include <gtest/gtest.h>

#include <random>

#include "cpu/cpu_level.h"
#include "test_support.h"
#include "text/utf8_kernels.h"
#include "utf8_samples.h"
#if defined(__x86_64__) || defined(__i386__)
#include "text/x86/kernels.h"
#endif

namespace fe::test {
namespace {

bool Valid(const Bytes& bytes) {
  return Utf8Validate(bytes.data(), static_cast<int32_t>(bytes.size())) != 0;
}

// The decoder as written out in full: the code point each sequence makes
// is checked against the ranges UTF-8 allows.
bool Reference(const Bytes& bytes) {
  size_t n = 0;
  while (n < bytes.size() && bytes[n] != 0)
    ++n;
  size_t at = n >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF ? 3 : 0;
  while (at < n) {
    const uint8_t lead = bytes[at];
    int extra;
    uint32_t point;
    if (lead < 0x80) {
      ++at;
      continue;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      extra = 1, point = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      extra = 2, point = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      extra = 3, point = lead & 0x07;
    } else {
      return false;
    }
    if (at + static_cast<size_t>(extra) >= n) return false;  // truncated
    for (int i = 1; i <= extra; ++i) {
      const uint8_t next = bytes[at + static_cast<size_t>(i)];
      if ((next & 0xC0) != 0x80) return false;
      point = point << 6 | (next & 0x3F);
    }
    static const uint32_t kSmallest[4] = {0, 0x80, 0x800, 0x10000};
    if (point < kSmallest[extra] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
      return false;
    }
    at += static_cast<size_t>(extra) + 1;
  }
  return n > 0;
}

TEST(Utf8Validate, WellFormedAndMalformedSequences) {
  EXPECT_TRUE(Valid({0xC3, 0xA9}));
  EXPECT_EQ(EngineGetLastError(), 0u);
  EXPECT_FALSE(Valid({0xC0, 0xAF}));  // overlong
  EXPECT_EQ(EngineGetLastError(), 13u);
  EXPECT_FALSE(Valid({0xED, 0xA0, 0x80}));        // surrogate
  EXPECT_FALSE(Valid({0xF4, 0x90, 0x80, 0x80}));  // above U+10FFFF
  EXPECT_FALSE(Valid({0xE2, 0x82}));              // truncated
  EXPECT_FALSE(Valid({0x80}));                    // stray continuation
  EXPECT_TRUE(Valid({0xF0, 0x9F, 0x98, 0x80}));
  EXPECT_TRUE(Valid({0xF4, 0x8F, 0xBF, 0xBF}));
  EXPECT_TRUE(Valid({0xED, 0x9F, 0xBF}));
  EXPECT_FALSE(Valid({0xE0, 0x9F, 0xBF}));
}

TEST(Utf8Validate, StopsAtTheFirstZeroByte) {
  EXPECT_TRUE(Valid({0x41, 0x00, 0xFF}));
  EngineSetLastError(0);
  EXPECT_FALSE(Valid({0x00, 0x41}));
  EXPECT_EQ(EngineGetLastError(), 4306u);
  const uint8_t text[] = "caf\xc3\xa9";
  EXPECT_TRUE(Utf8Validate(text, -1));
  EXPECT_FALSE(Utf8Validate(text, 4));  // cut inside the last character
}

TEST(Utf8Validate, ByteOrderMark) {
  EXPECT_TRUE(Valid({0xEF, 0xBB, 0xBF}));
  EXPECT_TRUE(Valid({0xEF, 0xBB, 0xBF, 0x41}));
  EXPECT_FALSE(Valid({0xEF, 0xBB}));
}

TEST(Utf8Validate, NothingToCheckAndNullBytes) {
  const uint8_t byte = 0x41;
  EngineSetLastError(0);
  EXPECT_FALSE(Utf8Validate(&byte, 0));
  EXPECT_EQ(EngineGetLastError(), 4306u);
  EXPECT_FALSE(Utf8Validate(nullptr, 5));
  EXPECT_EQ(EngineGetLastError(), 87u);
}

TEST(Utf8Validate, AgreesWithTheReferenceOnRandomAndMutatedText) {
  std::mt19937 random(7);
  const std::string sample =
      "plain ASCII text, caf\xc3\xa9, \xe2\x82\xac, \xf0\x9f\x98\x80 and more";
  for (int round = 0; round < 200000; ++round) {
    Bytes bytes;
    const int kind = round % 3;
    if (kind == 0) {
      bytes.resize(random() % 24);
      for (auto& b : bytes)
        b = static_cast<uint8_t>(random());
    } else {
      bytes.assign(sample.begin(), sample.end());
      for (int m = 0; m < 1 + kind; ++m)
        bytes[random() % bytes.size()] = static_cast<uint8_t>(0x80 + random() % 0x80);
    }
    ASSERT_EQ(Valid(bytes), Reference(bytes)) << round;
  }
}

TEST(Utf8Validate, LongTextWithDamageAgreesWithTheReference) {
  std::mt19937 random(23);
  for (int round = 0; round < 40000; ++round) {
    Bytes text = MixedUtf8Text(random() % 700, random);
    const int damage = round % 4;
    for (int d = 0; d < damage; ++d)
      DamageUtf8(text, random);
    ASSERT_EQ(Valid(text), Reference(text)) << round;
  }
}

// Each malformed sequence at every offset of a few 64-byte steps, among
// ASCII and among other non-ASCII text, so that it falls on every lane and
// across every step boundary.
TEST(Utf8Validate, MalformedSequenceAtEveryOffset) {
  const std::vector<Bytes> malformed = {{0x80},
                                        {0xBF},
                                        {0xC0, 0x80},
                                        {0xC1, 0xBF},
                                        {0xC2},
                                        {0xC2, 0x41},
                                        {0xE0, 0x9F, 0xBF},
                                        {0xE1, 0x80},
                                        {0xED, 0xA0, 0x80},
                                        {0xEF, 0xBF},
                                        {0xF0, 0x8F, 0xBF, 0xBF},
                                        {0xF4, 0x90, 0x80, 0x80},
                                        {0xF5, 0x80, 0x80, 0x80},
                                        {0xF8},
                                        {0xFF},
                                        {0xF1, 0x80, 0x80},
                                        {0xC3, 0xA9, 0xA9}};
  std::mt19937 random(5);
  for (const Bytes& around : {Bytes(200, 'a'), MixedUtf8Text(200, random)}) {
    for (const Bytes& bad : malformed) {
      for (size_t at = 0; at <= 140; ++at) {
        Bytes text(around.begin(), around.end());
        // Start the damage on a character boundary of the surrounding text.
        while (at < text.size() && (text[at] & 0xC0) == 0x80)
          ++at;
        text.insert(text.begin() + static_cast<std::ptrdiff_t>(at), bad.begin(), bad.end());
        ASSERT_EQ(Valid(text), Reference(text)) << Hex(bad.data(), bad.size()) << " at " << at;
        ASSERT_FALSE(Valid(text)) << Hex(bad.data(), bad.size()) << " at " << at;
      }
    }
  }
}

TEST(Utf8Validate, SequenceCutAtTheEndOfEveryLength) {
  std::mt19937 random(31);
  const Bytes text = MixedUtf8Text(400, random);
  for (size_t length = 1; length <= text.size(); ++length) {
    const Bytes prefix(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
    ASSERT_EQ(Valid(prefix), Reference(prefix)) << length;
  }
}

#if defined(__x86_64__) || defined(__i386__)
// The AVX2 kernel only vouches for whole sequences, and for well-formed
// text it vouches for all but the last unfinished step.
TEST(Utf8Validate, Avx2KernelPrefixIsWholeSequences) {
  if (cpu::SupportedLevel() < cpu::Level::kAvx2) GTEST_SKIP() << "no AVX2 here";
  std::mt19937 random(41);
  for (int round = 0; round < 20000; ++round) {
    Bytes text = MixedUtf8Text(random() % 600, random);
    const bool damaged = round % 2 == 1;
    if (damaged) DamageUtf8(text, random);
    for (auto& b : text)
      if (b == 0) b = 'z';
    const size_t prefix = text::x86::Utf8WellFormedPrefixAvx2(text.data(), text.size());
    ASSERT_LE(prefix, text.size());
    if (prefix > 0) {
      const Bytes vouched(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(prefix));
      ASSERT_TRUE(Reference(vouched)) << round;
    }
    if (!damaged) ASSERT_GE(prefix + 64 + 3, text.size()) << round;
  }
}
#endif

TEST(Utf8Validate, KernelChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(cpu::CapFromName("scalar"), cpu::Level::kScalar);
  EXPECT_EQ(cpu::CapFromName("sse"), cpu::Level::kSse);
  EXPECT_EQ(cpu::CapFromName("avx2"), cpu::Level::kAvx2);
  EXPECT_EQ(cpu::CapFromName("avx512"), cpu::Level::kAvx512);
  EXPECT_EQ(cpu::CapFromName(nullptr), cpu::Level::kAvx512);
  EXPECT_LE(cpu::ChosenLevel(), cpu::SupportedLevel());
  EXPECT_EQ(text::ChosenUtf8PrefixKernel() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx2);
}

}  // namespace
}  // namespace fe::test
