#include <gtest/gtest.h>

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

}  // namespace
}  // namespace fe::test
