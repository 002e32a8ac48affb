#include <gtest/gtest.h>

#include <random>

#include "reference/inflate_reference.h"
#include "test_support.h"

namespace fe::test {
namespace {

Bytes Compressible(size_t size) {
  Bytes data(size);
  for (size_t i = 0; i < size; ++i)
    data[i] = static_cast<uint8_t>("FileEncoder "[i % 12]);
  return data;
}

Bytes Deflate(const Bytes& input) {
  uint32_t length = static_cast<uint32_t>(input.size() * 2 + 64);
  Bytes out(length);
  EXPECT_TRUE(DeflateBuffer(input.data(), static_cast<int32_t>(input.size()), out.data(), &length));
  out.resize(length);
  return out;
}

TEST(DataCompression, StreamIsLevelNineZlib) {
  const Bytes stream = Deflate(Compressible(1000));
  ASSERT_GE(stream.size(), 2u);
  EXPECT_EQ(stream[0], 0x78);
  EXPECT_EQ(stream[1], 0xDA);
}

TEST(DataCompression, MeasuringGivesTheCompressedSize) {
  const Bytes input = RandomBytes(5000, 70);
  uint32_t measured = 0;
  EXPECT_TRUE(DeflateBuffer(input.data(), 5000, nullptr, &measured));
  EXPECT_EQ(measured, Deflate(input).size());
}

TEST(DataCompression, ExpandRestoresTheInput) {
  for (size_t size : {1u, 2u, 100u, 10000u}) {
    const Bytes input = size == 100 ? RandomBytes(size, 71) : Compressible(size);
    const Bytes stream = Deflate(input);
    uint32_t length = static_cast<uint32_t>(size);
    Bytes out(size);
    EXPECT_TRUE(
        InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
    EXPECT_EQ(length, size);
    EXPECT_EQ(out, input);
  }
}

TEST(DataCompression, MeasuringExpansionGivesTheOriginalSize) {
  const Bytes stream = Deflate(Compressible(12345));
  uint32_t length = 0;
  EXPECT_TRUE(InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), nullptr, &length));
  EXPECT_EQ(length, 12345u);
}

TEST(DataCompression, OutputTooSmallFails) {
  const Bytes input = RandomBytes(100, 72);
  uint32_t length = 50;
  Bytes out(50);
  EXPECT_FALSE(DeflateBuffer(input.data(), 100, out.data(), &length));
  const Bytes stream = Deflate(Compressible(1000));
  length = 999;
  Bytes small(999);
  EXPECT_FALSE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), small.data(), &length));
}

TEST(DataCompression, OneAndTwoByteInputsNeedMoreThanFourTimesTheirLength) {
  // The control sizes its output at four times the input: too small for
  // the shortest zlib stream of such input.
  for (int32_t size : {1, 2}) {
    const Bytes input(static_cast<size_t>(size), 'a');
    uint32_t length = static_cast<uint32_t>(4 * size);
    Bytes out(length);
    EXPECT_FALSE(DeflateBuffer(input.data(), size, out.data(), &length)) << size;
  }
}

TEST(DataCompression, MissingArgumentsFail) {
  uint8_t out[64];
  uint32_t length = 64;
  EXPECT_FALSE(DeflateBuffer(nullptr, 1, out, &length));
  EXPECT_FALSE(DeflateBuffer(out, 0, out, &length));
  EXPECT_FALSE(DeflateBuffer(out, 1, out, nullptr));
  length = 0;
  EXPECT_FALSE(DeflateBuffer(out, 1, out, &length));
  EXPECT_FALSE(InflateBuffer(nullptr, 1, out, &length));
}

TEST(DataCompression, FailureLeavesTheLastErrorAsItStood) {
  EngineSetLastError(12345);
  uint8_t junk[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  uint32_t length = 0;
  EXPECT_FALSE(InflateBuffer(junk, 16, nullptr, &length));
  EXPECT_EQ(EngineGetLastError(), 12345u);
}

TEST(DataCompression, DataThatIsNotZlibFails) {
  const Bytes junk = ToBytes("this is not a zlib stream");
  uint32_t length = 1000;
  Bytes out(1000);
  EXPECT_FALSE(InflateBuffer(junk.data(), static_cast<int32_t>(junk.size()), out.data(), &length));
  length = 0;
  EXPECT_FALSE(InflateBuffer(junk.data(), static_cast<int32_t>(junk.size()), nullptr, &length));
}

TEST(DataCompression, TruncatedStreamFailsWhenMeasuring) {
  const Bytes stream = Deflate(RandomBytes(3000, 73));
  for (size_t cut : {stream.size() - 1, stream.size() - 4, stream.size() / 2, size_t{3}}) {
    uint32_t length = 0;
    EXPECT_FALSE(InflateBuffer(stream.data(), static_cast<int32_t>(cut), nullptr, &length)) << cut;
  }
}

TEST(DataCompression, StreamNeedingADictionaryFails) {
  // FDICT set: inflate asks for a preset dictionary, which never comes.
  const Bytes stream = {0x78, 0xBB, 0x00, 0x00, 0x00, 0x01, 0x03, 0x00};
  uint32_t length = 0;
  EXPECT_FALSE(InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), nullptr, &length));
}

// Expands into `capacity` bytes both ways: result, length and the bytes up
// to that length must agree.
void ExpectExpandsAsZlib(const Bytes& stream, uint32_t capacity, const std::string& what) {
  Bytes fast(capacity + 1, 0xA5), plain(capacity + 1, 0xA5);
  uint32_t fastLength = capacity, plainLength = capacity;
  const auto size = static_cast<int32_t>(stream.size());
  const bool fastOk = InflateBuffer(stream.data(), size, fast.data(), &fastLength) != 0;
  const bool plainOk = reference::InflateInto(stream.data(), size, plain.data(), &plainLength);
  ASSERT_EQ(fastOk, plainOk) << what << " capacity " << capacity;
  ASSERT_EQ(fastLength, plainLength) << what << " capacity " << capacity;
  ASSERT_TRUE(std::equal(plain.begin(), plain.begin() + plainLength, fast.begin()))
      << what << " capacity " << capacity;
}

TEST(DataCompression, ExpandingIntoABufferAgreesWithZlibOnDamagedStreams) {
  std::mt19937 random(74);
  for (const Bytes& input : {Bytes(1, 'x'), Compressible(5000), RandomBytes(3000, 75)}) {
    const Bytes stream = Deflate(input);
    const auto size = static_cast<uint32_t>(input.size());
    for (uint32_t capacity : {1u, size / 2, size - 1 + (size == 1), size, size + 1, 2 * size})
      ExpectExpandsAsZlib(stream, capacity, "whole");
    for (size_t cut = 1; cut < stream.size(); ++cut)
      ExpectExpandsAsZlib(Bytes(stream.begin(), stream.begin() + cut), size, "cut");
    for (size_t at = 0; at < stream.size(); ++at) {
      Bytes damaged = stream;
      damaged[at] ^= static_cast<uint8_t>(1u << (random() % 8));
      ExpectExpandsAsZlib(damaged, size + 16, "damaged");
    }
    Bytes followed = stream;
    for (int i = 0; i < 40; ++i)
      followed.push_back(static_cast<uint8_t>(random()));
    ExpectExpandsAsZlib(followed, size, "followed");
  }
}

TEST(DataCompression, ExpandingIntoExactlyTheRoomSucceedsAndOneByteLessFills) {
  const Bytes input = RandomBytes(4000, 76);
  const Bytes stream = Deflate(input);
  Bytes out(4000);
  uint32_t length = 4000;
  EXPECT_TRUE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
  EXPECT_EQ(length, 4000u);
  EXPECT_EQ(out, input);
  length = 3999;
  EXPECT_FALSE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
  // The room is filled with the first 3999 bytes before the stream fails.
  EXPECT_EQ(length, 3999u);
  EXPECT_TRUE(std::equal(out.begin(), out.begin() + 3999, input.begin()));
}

TEST(DataCompression, BytesAfterTheStreamAreLeftAlone) {
  const Bytes input = Compressible(3000);
  Bytes stream = Deflate(input);
  stream.insert(stream.end(), {'t', 'r', 'a', 'i', 'l'});
  Bytes out(4000);
  uint32_t length = 4000;
  EXPECT_TRUE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
  EXPECT_EQ(length, 3000u);
}

TEST(DataCompression, WrongChecksumFailsWithTheWholeDataOut) {
  const Bytes input = Compressible(3000);
  Bytes stream = Deflate(input);
  stream.back() ^= 1;
  Bytes out(4000);
  uint32_t length = 4000;
  EXPECT_FALSE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
  EXPECT_EQ(length, 3000u);
}

TEST(DataCompression, StreamNeedingADictionaryFailsIntoABuffer) {
  const Bytes stream = {0x78, 0xBB, 0x00, 0x00, 0x00, 0x01, 0x03, 0x00};
  Bytes out(64);
  uint32_t length = 64;
  EXPECT_FALSE(
      InflateBuffer(stream.data(), static_cast<int32_t>(stream.size()), out.data(), &length));
  EXPECT_EQ(length, 0u);
}

}  // namespace
}  // namespace fe::test
