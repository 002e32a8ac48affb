// Files much larger than any buffer: every streaming method round-trips a
// 100 MB file, and the process's peak memory does not grow with the size
// (compared with the same work on a 24 MB file, already larger than the
// LZMA window, so that every fixed buffer has been touched by then).
#include <sys/resource.h>

#include <gtest/gtest.h>

#include <fstream>

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

}  // namespace
}  // namespace fe::test
