// Files much larger than any buffer: every streaming method round-trips a
// 100 MB file, and the process's peak memory does not grow with the size
// (compared with the same work on a 24 MB file, already larger than the
// LZMA window, so that every fixed buffer has been touched by then).
#include <sys/resource.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr size_t kMiB = 1 << 20;

// Writes `size` bytes of partly compressible data in 1 MiB pieces.
void WriteLargeFile(const std::string& path, size_t size) {
  std::ofstream file(path, std::ios::binary);
  Bytes piece = RandomBytes(kMiB, 1);
  for (size_t i = 0; i < piece.size(); i += 3)
    piece[i] = 'a';
  for (size_t written = 0; written < size; written += kMiB) {
    piece[0] = static_cast<uint8_t>(written / kMiB);
    file.write(reinterpret_cast<const char*>(piece.data()), static_cast<std::streamsize>(kMiB));
  }
}

bool SameFiles(const std::string& a, const std::string& b) {
  std::ifstream x(a, std::ios::binary), y(b, std::ios::binary);
  std::vector<char> p(kMiB), q(kMiB);
  while (x && y) {
    x.read(p.data(), static_cast<std::streamsize>(p.size()));
    y.read(q.data(), static_cast<std::streamsize>(q.size()));
    if (x.gcount() != y.gcount() || !std::equal(p.begin(), p.begin() + x.gcount(), q.begin())) {
      return false;
    }
  }
  return x.eof() && y.eof();
}

long PeakMemoryKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Every method, there and back; true when all restore the file.
bool RoundTripEverything(const TempFolder& folder, size_t size) {
  const std::string source = folder.Path("large.bin");
  const std::string middle = folder.Path("middle");
  const std::string back = folder.Path("back.bin");
  WriteLargeFile(source, size);
  bool ok = true;
  for (uint32_t type : {1u, 2u, 3u}) {
    ok &= CompressFileByType(source.c_str(), middle.c_str(), type, 1) &&
          ExpandFileByType(middle.c_str(), back.c_str(), 0) && SameFiles(source, back);
  }
  ok &= EncryptFileData("large", source.c_str(), middle.c_str()) &&
        DecryptFileData("large", middle.c_str(), back.c_str()) && SameFiles(source, back);
  char one[65], other[65];
  ok &= GetFileDigestSHA256(source.c_str(), one) == 64 &&
        GetFileDigestSHA256(back.c_str(), other) == 64 && std::string(one) == other;
  ok &= CompareFiles(source.c_str(), back.c_str(), fileCompareContents, nullptr) != 0;
  for (uint32_t encoding : {2u, 3u, 4u, 7u, 8u}) {
    ok &= EncodeFileByType(source.c_str(), middle.c_str(), encoding) &&
          DecodeFileByType(middle.c_str(), back.c_str(), encoding) && SameFiles(source, back);
  }
  return ok;
}

TEST(LargeFiles, RoundTripWithMemoryThatDoesNotGrowWithTheSize) {
  TempFolder folder;
  ASSERT_TRUE(RoundTripEverything(folder, 24 * kMiB));
  const long afterSmall = PeakMemoryKiB();
  ASSERT_TRUE(RoundTripEverything(folder, 100 * kMiB));
  const long afterLarge = PeakMemoryKiB();
  // Four times the data, and no more than a few MiB of extra peak memory.
  EXPECT_LT(afterLarge - afterSmall, 8 * 1024) << afterSmall << " KiB then " << afterLarge;
}

// Past 4 GiB the running total and the final flag need 64 bits: a sparse
// file of 4 GiB and five bytes encrypts to 4 GiB and 16, and its last
// block, deciphered with the block before it as the chaining value, is the
// five bytes and their padding.
TEST(LargeFiles, EncryptionPastFourGibibytes) {
  TempFolder folder;
  const std::string source = folder.Path("sparse.bin");
  const uint64_t size = (4ull << 30) + 5;
  {
    std::ofstream file(source, std::ios::binary);
    file.seekp(static_cast<std::streamoff>(size - 5));
    file << "tail!";
    if (!file) GTEST_SKIP() << "no sparse file of 4 GiB here";
  }
  const std::string cipher = folder.Path("sparse.enc");
  ASSERT_TRUE(EncryptFileData("big", source.c_str(), cipher.c_str()));
  std::ifstream in(cipher, std::ios::binary | std::ios::ate);
  ASSERT_EQ(static_cast<uint64_t>(in.tellg()), (4ull << 30) + 16);
  in.seekg(-32, std::ios::end);
  Bytes last(32);
  in.read(reinterpret_cast<char*>(last.data()), 32);
  std::remove(source.c_str());
  std::remove(cipher.c_str());
  const std::string chaining = Hex(last.data(), 16);
  const std::string block = folder.Write("last", Bytes(last.begin() + 16, last.end()));
  const std::string command = "openssl enc -d -aes-256-cbc -iv " + chaining +
                              " -K $(/usr/bin/python3 -c \"import hashlib; print(hashlib.sha256("
                              "b'{fd91a26c-3e37-4b0c-bbc2-cb031bf7130a}big').hexdigest())\") -in " +
                              block;
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  char text[64] = {};
  const size_t n = fread(text, 1, sizeof text - 1, pipe);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_EQ(std::string(text, n), "tail!");
}

// Base58 converts the whole input as one number; a megabyte each way must
// not take minutes.
TEST(LargeFiles, Base58OfAMebibyteInUnderASecond) {
  const Bytes input = RandomBytes(1 << 20, 58);
  const auto start = std::chrono::steady_clock::now();
  const std::string text = Encode(input, dataEncodeBase58);
  const Bytes back = Decode(text, dataDecodeBase58);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  ASSERT_EQ(back, input);
  EXPECT_LT(seconds, 1.0);
}

}  // namespace
}  // namespace fe::test
