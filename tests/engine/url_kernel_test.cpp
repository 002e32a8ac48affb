// URL encoding and decoding against the one-at-a-time references at every
// length up to 4096 and at every capacity near the kernels' reach. make
// test runs this suite at every instruction-set level (FE_CPU), so the
// vector kernels and the byte loops both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "codecs/url_kernels.h"
#include "cpu/cpu_level.h"
#include "reference/url_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

void ExpectEncodersAgree(const Bytes& data, int32_t capacity) {
  std::vector<char> a(static_cast<size_t>(capacity) + 8, '\xA5'), b = a;
  const auto length = static_cast<int32_t>(data.size());
  static const uint8_t kNothing = 0;  // an empty input is still a buffer
  const uint8_t* bytes = data.empty() ? &kNothing : data.data();
  ASSERT_EQ(::UrlEncode(bytes, length, a.data(), capacity),
            reference::UrlEncode(bytes, length, b.data(), capacity))
      << "length " << length << " capacity " << capacity;
  ASSERT_EQ(a, b) << "length " << length << " capacity " << capacity;
}

void ExpectDecodersAgree(const std::string& text, int32_t capacity) {
  std::vector<uint8_t> a(static_cast<size_t>(capacity) + 8, 0xA5), b = a;
  const auto length = static_cast<int32_t>(text.size());
  ASSERT_EQ(::UrlDecode(text.data(), length, a.data(), capacity),
            reference::UrlDecode(text.data(), length, b.data(), capacity))
      << "length " << length << " capacity " << capacity;
  ASSERT_EQ(a, b) << "length " << length << " capacity " << capacity;
}

// Bytes that are plain, escaped or mixed, as text and as binary data.
Bytes MixedBytes(std::mt19937& random, size_t length) {
  Bytes data = RandomBytes(length, random());
  static const std::string plain = "abcXYZ019~";
  const uint32_t plainEvery = random() % 4;
  for (uint8_t& byte : data) {
    if (plainEvery != 0 && random() % plainEvery != 0) byte = plain[random() % plain.size()];
  }
  return data;
}

// Three characters a byte at most, and the terminator.
int32_t EncodedRoom(size_t length) {
  return static_cast<int32_t>(3 * length + 1);
}

TEST(UrlKernels, EncoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(2525);
  for (size_t length = 0; length <= 4096; ++length) {
    const Bytes data = MixedBytes(random, length);
    ExpectEncodersAgree(data, EncodedRoom(length));
    ExpectEncodersAgree(data, 1 + static_cast<int32_t>(random() % EncodedRoom(length)));
  }
}

// Every capacity up to past the room for all: the failures where an
// escape or a plain byte no longer fits fall inside and past the kernel's
// last step.
TEST(UrlKernels, EncoderAgreesAtEveryCapacity) {
  std::mt19937 random(2526);
  for (const size_t length : {size_t{15}, size_t{16}, size_t{17}, size_t{32}, size_t{100}}) {
    for (int round = 0; round < 5; ++round) {
      Bytes data = MixedBytes(random, length);
      // Once with every byte escaped: a step then writes all it may.
      if (round == 0) std::fill(data.begin(), data.end(), '.');
      for (int32_t capacity = 1; capacity <= EncodedRoom(length) + 2; ++capacity)
        ExpectEncodersAgree(data, capacity);
    }
  }
}

// Encoded text with up to three characters replaced by ones the decoder
// treats apart: '+', '%', digits in either case, bytes from 128 up.
std::string DamagedText(std::mt19937& random, size_t length) {
  std::string text = length > 0 ? Encode(MixedBytes(random, length), dataEncodeURL) : "";
  text.resize(length, 'a');
  static const std::string noise("+%%%fFaA9g\x80\xFF", 12);
  Damage(random, text, noise);
  return text;
}

TEST(UrlKernels, DecoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(2527);
  for (size_t length = 0; length <= 4096; ++length) {
    const std::string text = DamagedText(random, length);
    const auto room = static_cast<int32_t>(length) + 1;
    ExpectDecodersAgree(text, room);
    ExpectDecodersAgree(text, 1 + static_cast<int32_t>(random() % room));
  }
}

TEST(UrlKernels, DecoderAgreesAtEveryCapacity) {
  std::mt19937 random(2528);
  for (const size_t length : {size_t{63}, size_t{64}, size_t{65}, size_t{128}, size_t{200}}) {
    for (int round = 0; round < 5; ++round) {
      // Once without escapes: a step then writes a byte for every character.
      const std::string text = round == 0 ? std::string(length, 'p') : DamagedText(random, length);
      for (int32_t capacity = 1; capacity <= static_cast<int32_t>(length) + 2; ++capacity)
        ExpectDecodersAgree(text, capacity);
    }
  }
}

// An escape, a '%' with one digit and a lone '%' at every place across two
// steps, the text ending right after them or running on.
TEST(UrlKernels, PercentAtEveryPlaceAroundAStepEdge) {
  for (const std::string percent : {"%4a", "%4", "%", "%%41", "%G1"}) {
    for (size_t at = 0; at <= 130; ++at) {
      std::string text(at, 'b');
      text += percent;
      ExpectDecodersAgree(text, static_cast<int32_t>(text.size()));
      text += std::string(70, 'c');
      ExpectDecodersAgree(text, static_cast<int32_t>(text.size()));
    }
  }
}

// Every byte at every place of encoded text that spans two steps.
TEST(UrlKernels, EveryByteAtEveryPositionAgrees) {
  const std::string clean = Encode(RandomBytes(50, 2529), dataEncodeURL);
  for (size_t position = 0; position < clean.size(); ++position) {
    for (int c = 0; c < 256; ++c) {
      std::string text = clean;
      text[position] = static_cast<char>(c);
      ExpectDecodersAgree(text, static_cast<int32_t>(text.size()));
    }
  }
}

// After a '+', everything reads as spaces, however far the kernel got.
TEST(UrlKernels, PlusAtEveryPlaceTurnsTheRestToSpaces) {
  const std::string clean = Encode(RandomBytes(60, 2530), dataEncodeURL);
  for (size_t position = 0; position < clean.size(); ++position) {
    std::string text = clean;
    text[position] = '+';
    ExpectDecodersAgree(text, static_cast<int32_t>(text.size()));
    // The part before decodes as it would alone (a cut escape as plain
    // characters), then one space for each character from the '+' on.
    Bytes expected = position > 0 ? Decode(clean.substr(0, position), dataDecodeURL) : Bytes{};
    expected.insert(expected.end(), text.size() - position, ' ');
    ASSERT_EQ(Decode(text, dataDecodeURL), expected) << "'+' at " << position;
  }
}

TEST(UrlKernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenUrlKernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
