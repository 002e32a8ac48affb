// The Base85 and Z85 coders against their one-group-at-a-time references
// at every length up to 4096: the Base85 decoder split at random places
// into pieces of random capacity, the others at random and at every
// capacity. make test runs these suites at every instruction-set level
// (FE_CPU), so the vector kernels and the group loops both face them.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "chunk_pieces.h"
#include "codecs/base85_kernels.h"
#include "codecs/codec_internal.h"
#include "cpu/cpu_level.h"
#include "reference/base85_reference.h"
#include "reference/z85_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

bool SameState(const codecs::Base85Decoder& a, const reference::Base85State& b) {
  return a.value == b.value && a.digits == b.digits && a.full == b.full;
}

// The engine's decoder and the reference as one state, so that the piece
// runner can hand each its own.
struct Both {
  codecs::Base85Decoder fast;
  reference::Base85State plain;
};

void ExpectPiecesAgree(std::mt19937& random, const std::string& text) {
  Both fast, plain;
  ExpectSameInPieces<uint8_t>(
      static_cast<int32_t>(text.size()), random, &fast, &plain,
      // Mostly room for the piece; now and then a stop anywhere.
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 4u)) : piece;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return state->fast.Feed(text.data() + at, static_cast<size_t>(piece), out, capacity);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, Both* state) {
        return reference::Base85Feed(text.data() + at, static_cast<size_t>(piece), out, capacity,
                                     &state->plain);
      },
      [](const Both& a, const Both& b) { return SameState(a.fast, b.plain); });
}

// Base85 text of random data (with runs of zero groups now and then),
// cut to `length` characters, with up to three characters replaced by
// ones the decoder treats apart: 'z', white space, characters above 'u'
// and below '!' and bytes from 128 up.
std::string DamagedText(std::mt19937& random, int32_t length) {
  Bytes data = RandomBytes(static_cast<size_t>(length), random());
  if (random() % 2 == 0) {
    for (size_t at = 0; at + 4 <= data.size(); at += 4) {
      if (random() % 4 == 0) std::fill(data.begin() + at, data.begin() + at + 4, 0);
    }
  }
  std::string text = length > 0 ? Encode(data, dataEncodeBase85) : "";
  text.resize(static_cast<size_t>(length), '!');
  static const std::string noise("z \r\n\tvw~\x80\xFF\0u!", 13);
  Damage(random, text, noise);
  return text;
}

TEST(Base85Kernels, DecoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(8585);
  for (int32_t length = 0; length <= 4096; ++length)
    ExpectPiecesAgree(random, DamagedText(random, length));
}

// Groups whose values pass 2^32 wrap in the kernel exactly as one
// character at a time.
TEST(Base85Kernels, OverlongGroupsWrapAsThePlainLoop) {
  std::mt19937 random(8586);
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (size_t k = random() % 200; k > 0; --k)
      text += static_cast<char>(random() % 2 ? 'u' - random() % 4 : '!' + random() % 85);
    ExpectPiecesAgree(random, text);
  }
}

// Random bytes whose 4-byte groups are all zero now and then, so that
// Base85's 'z' falls in every lane of a kernel step.
Bytes DataWithZeroGroups(std::mt19937& random, size_t length) {
  Bytes data = RandomBytes(length, random());
  const uint32_t zeroEvery = 1 + random() % 4;
  for (size_t at = 0; at + 4 <= data.size(); at += 4) {
    if (random() % zeroEvery == 0) std::fill(data.begin() + at, data.begin() + at + 4, 0);
  }
  return data;
}

// The engine's encoder and the reference into buffers of `capacity`
// characters (and a guard beyond), compared to the last byte.
template <typename Engine, typename Reference>
void ExpectEncodersAgree(const Bytes& data, int32_t capacity, Engine engine, Reference reference) {
  std::vector<char> a(static_cast<size_t>(capacity) + 8, '\xA5'), b = a;
  const auto length = static_cast<int32_t>(data.size());
  ASSERT_EQ(engine(data.data(), length, a.data(), capacity),
            reference(data.data(), length, b.data(), capacity))
      << "length " << length << " capacity " << capacity;
  ASSERT_EQ(a, b) << "length " << length << " capacity " << capacity;
}

void ExpectBase85EncodersAgree(const Bytes& data, int32_t capacity) {
  ExpectEncodersAgree(data, capacity, ::Base85Encode, reference::Base85Encode);
}

// Five characters a group at most, and the terminator.
int32_t Base85Room(size_t length) {
  return static_cast<int32_t>(5 * ((length + 3) / 4) + 1);
}

TEST(Base85Kernels, EncoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(8587);
  for (size_t length = 0; length <= 4096; ++length) {
    const Bytes data = DataWithZeroGroups(random, length);
    ExpectBase85EncodersAgree(data, Base85Room(length));
    ExpectBase85EncodersAgree(data, 1 + static_cast<int32_t>(random() % Base85Room(length)));
  }
}

// Every capacity stop: at and between group edges, inside the kernel's
// reach and in the loop's, with and without 'z' groups before it.
TEST(Base85Kernels, EncoderAgreesAtEveryCapacity) {
  std::mt19937 random(8588);
  for (const size_t length : {size_t{1}, size_t{31}, size_t{32}, size_t{33}, size_t{163}}) {
    for (int round = 0; round < 4; ++round) {
      const Bytes data = DataWithZeroGroups(random, length);
      for (int32_t capacity = 1; capacity <= Base85Room(length) + 2; ++capacity)
        ExpectBase85EncodersAgree(data, capacity);
    }
  }
}

// Every pattern of zero groups over the eight groups of a step, followed
// by every short tail.
TEST(Base85Kernels, ZeroGroupsInEveryLaneAgree) {
  std::mt19937 random(8589);
  for (uint32_t zeros = 0; zeros < 256; ++zeros) {
    for (size_t tail = 0; tail < 4; ++tail) {
      Bytes data = RandomBytes(32 + tail, random());
      for (size_t g = 0; g < 8; ++g) {
        if (zeros >> g & 1)
          std::fill(data.begin() + 4 * g, data.begin() + 4 * g + 4, 0);
        else
          data[4 * g + random() % 4] |= 1;  // never zero by chance
      }
      ExpectBase85EncodersAgree(data, Base85Room(data.size()));
    }
  }
}

// Digits 84 and 0 in every place: the largest and smallest group values
// and those next to the powers of 85, where a wrong reciprocal would show.
TEST(Base85Kernels, GroupValuesAtDigitEdgesAgree) {
  std::vector<uint32_t> values = {0, 1, 84, 85, 0xFFFFFFFF, 0xFFFFFFFE, 0x80000000, 0x7FFFFFFF};
  for (uint64_t power = 85; power < (uint64_t{1} << 32); power *= 85) {
    for (int64_t near = -2; near <= 2; ++near)
      values.push_back(static_cast<uint32_t>(power + near));
  }
  std::mt19937 random(8590);
  for (int k = 0; k < 4000; ++k)
    values.push_back(static_cast<uint32_t>(random()) % 85 * 52200625u + random() % 52200625u);
  Bytes data;
  for (const uint32_t value : values) {
    for (int shift = 24; shift >= 0; shift -= 8)
      data.push_back(static_cast<uint8_t>(value >> shift));
  }
  ExpectBase85EncodersAgree(data, Base85Room(data.size()));
  Bytes whole(data.size() - data.size() % 4);
  std::copy_n(data.begin(), whole.size(), whole.begin());
  ExpectEncodersAgree(whole, static_cast<int32_t>(whole.size() / 4 * 5 + 1), ::Z85Encode,
                      reference::Z85Encode);
}

TEST(Base85Kernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenBase85Kernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

void ExpectZ85EncodersAgree(const Bytes& data, int32_t capacity) {
  ExpectEncodersAgree(data, capacity, ::Z85Encode, reference::Z85Encode);
}

TEST(Z85Kernels, EncoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(8591);
  for (size_t length = 4; length <= 4096; length += 4) {
    const Bytes data = DataWithZeroGroups(random, length);
    const auto room = static_cast<int32_t>(length / 4 * 5 + 1);
    ExpectZ85EncodersAgree(data, room);
    ExpectZ85EncodersAgree(data, 1 + static_cast<int32_t>(random() % room));
  }
}

TEST(Z85Kernels, EncoderAgreesAtEveryCapacity) {
  std::mt19937 random(8592);
  for (const size_t length : {size_t{4}, size_t{32}, size_t{36}, size_t{164}}) {
    const Bytes data = RandomBytes(length, random());
    for (int32_t capacity = 1; capacity <= static_cast<int32_t>(length / 4 * 5 + 3); ++capacity)
      ExpectZ85EncodersAgree(data, capacity);
  }
}

void ExpectZ85DecodersAgree(const std::string& text, int32_t capacity) {
  std::vector<uint8_t> a(static_cast<size_t>(capacity) + 8, 0xA5), b = a;
  ASSERT_EQ(::Z85Decode(text.c_str(), a.data(), capacity),
            reference::Z85Decode(text.c_str(), b.data(), capacity))
      << "text " << text << " capacity " << capacity;
  ASSERT_EQ(a, b) << "text " << text << " capacity " << capacity;
}

// Z85 text of random data with up to three characters replaced by ones
// outside the alphabet (or by other digits), every whole-group length up
// to 4095, at room for all and at a random stop.
TEST(Z85Kernels, DecoderAgreesWithThePlainLoopAtEveryLength) {
  std::mt19937 random(8593);
  static const std::string noise("\x01 ,;\"'\\_|~`\x7F\x80\xC3\xFF\x30#", 17);
  for (size_t groups = 1; groups <= 819; ++groups) {
    std::string text = Encode(RandomBytes(4 * groups, random()), dataEncodeZ85);
    ASSERT_EQ(text.size(), 5 * groups);
    Damage(random, text, noise);
    const auto room = static_cast<int32_t>(4 * groups);
    ExpectZ85DecodersAgree(text, room);
    ExpectZ85DecodersAgree(text, 1 + static_cast<int32_t>(random() % (room + 4)));
  }
}

// Every byte from 1 to 255 at every place of eleven groups (NUL would end
// the text).
TEST(Z85Kernels, EveryByteAtEveryPositionAgrees) {
  const std::string clean = Encode(RandomBytes(44, 8594), dataEncodeZ85);
  for (size_t position = 0; position < clean.size(); ++position) {
    for (int c = 1; c < 256; ++c) {
      std::string text = clean;
      text[position] = static_cast<char>(c);
      ExpectZ85DecodersAgree(text, 44);
    }
  }
}

// Groups above 2^32 ("#####" is 85^5 - 1) wrap as the loop's arithmetic
// does.
TEST(Z85Kernels, OverlongGroupsWrapAsThePlainLoop) {
  std::mt19937 random(8595);
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (size_t k = 5 * (1 + random() % 40); k > 0; --k)
      text += reference::kZ85Alphabet[random() % 2 ? 84 - random() % 4 : random() % 85];
    ExpectZ85DecodersAgree(text, static_cast<int32_t>(text.size()));
  }
}

}  // namespace
}  // namespace fe::test
