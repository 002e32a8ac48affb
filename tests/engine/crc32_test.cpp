// CRC-32: the table form against zlib, and the carry-less multiplication
// kernel against the table at every length up to 4096 from any register.
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <random>

#include "cpu/cpu_level.h"
#include "digest/crc32.h"
#include "test_support.h"
#if defined(__x86_64__) || defined(__i386__)
#include "digest/x86/kernels.h"
#endif

namespace fe::test {
namespace {

uint32_t Finished(uint32_t (*update)(uint32_t, const uint8_t*, size_t), const Bytes& data) {
  return ~update(0xFFFFFFFF, data.data(), data.size());
}

TEST(Crc32, CheckValueOfTheDigits) {
  const Bytes digits = ToBytes("123456789");
  EXPECT_EQ(Finished(digest::Crc32Bytes, digits), 0xCBF43926u);
  EXPECT_EQ(Finished(digest::Crc32Update, digits), 0xCBF43926u);
}

TEST(Crc32, TableFormAgreesWithZlib) {
  for (size_t length : {0u, 1u, 15u, 64u, 1000u, 65537u}) {
    const Bytes data = RandomBytes(length, static_cast<uint32_t>(length) + 7);
    const auto theirs =
        static_cast<uint32_t>(crc32(0, data.data(), static_cast<uInt>(data.size())));
    EXPECT_EQ(Finished(digest::Crc32Bytes, data), theirs) << length;
    EXPECT_EQ(Finished(digest::Crc32Update, data), theirs) << length;
  }
}

#if defined(__x86_64__) || defined(__i386__)
TEST(Crc32, PclmulKernelAgreesWithTheTableAtEveryLength) {
  if (cpu::SupportedLevel() < cpu::Level::kSse || !cpu::SupportedExtras().pclmul) {
    GTEST_SKIP() << "no PCLMULQDQ here";
  }
  std::mt19937 random(32);
  const Bytes data = RandomBytes(4096 + 16, 32);
  for (size_t length = 0; length <= 4096; ++length) {
    const uint32_t start = random();
    const size_t offset = random() % 16;  // any alignment
    ASSERT_EQ(digest::x86::Crc32Pclmul(start, data.data() + offset, length),
              digest::Crc32Bytes(start, data.data() + offset, length))
        << length;
  }
}
#endif

// Pieces of any size give the CRC of the whole.
TEST(Crc32, PiecesGiveTheWhole) {
  std::mt19937 random(9);
  const Bytes data = RandomBytes(100000, 9);
  const uint32_t whole = digest::Crc32Update(0xFFFFFFFF, data.data(), data.size());
  uint32_t crc = 0xFFFFFFFF;
  for (size_t at = 0; at < data.size();) {
    const size_t n = std::min<size_t>(random() % 700, data.size() - at);
    crc = digest::Crc32Update(crc, data.data() + at, n);
    at += n;
  }
  EXPECT_EQ(crc, whole);
}

}  // namespace
}  // namespace fe::test
