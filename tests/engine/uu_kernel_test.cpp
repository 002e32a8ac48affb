// The uuencode file coders against the character-at-a-time reference:
// every length up to 512 and longer samples encoded, and lines of every
// kind decoded, including lines whose characters run out before their
// length says and blocks cut off before their end. make test runs this
// suite at every instruction-set level (FE_CPU), so the vector kernels and
// the group loops both face it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "codecs/uu_kernels.h"
#include "cpu/cpu_level.h"
#include "reference/uu_reference.h"
#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

// Every length up to 512 meets every place a line (45 bytes) can end in a
// kernel step (16 groups) several times over; a file per length costs
// milliseconds under Wine, so longer files are sampled.
std::vector<size_t> Lengths() {
  std::vector<size_t> lengths;
  for (size_t length = 0; length <= 512; ++length)
    lengths.push_back(length);
  std::mt19937 random(45);
  for (int k = 0; k < 40; ++k)
    lengths.push_back(513 + random() % 20000);
  return lengths;
}

TEST(UuKernels, EncodedFilesMatchTheReference) {
  TempFolder folder;
  const std::string input = folder.Path("data.bin"), output = folder.Path("data.uu");
  for (const size_t length : Lengths()) {
    const Bytes data = RandomBytes(length, static_cast<uint32_t>(length));
    folder.Write("data.bin", data);
    ASSERT_TRUE(UuencodeFile(input.c_str(), output.c_str())) << length;
    ASSERT_EQ(ToString(TempFolder::Read(output)), reference::UuencodedFile(data, "data.bin"))
        << "length " << length;
  }
}

// A body line: a length character, then usually as many characters as it
// calls for, now and then fewer or more; any byte but NUL, CR and LF.
std::string RandomLine(std::mt19937& random) {
  const int n = 1 + static_cast<int>(random() % 63);
  size_t count = static_cast<size_t>((n + 2) / 3 * 4);
  if (random() % 4 == 0) count = random() % (count + 9);
  std::string line(1, static_cast<char>(32 + n));
  for (size_t k = 0; k < count; ++k) {
    char c;
    do {
      c = static_cast<char>(random() % 4 == 0 ? random() % 256 : 32 + random() % 64);
    } while (c == '\0' || c == '\r' || c == '\n');
    line += c;
  }
  return line;
}

TEST(UuKernels, DecodedFilesMatchTheReference) {
  TempFolder folder;
  const std::string input = folder.Path("in.uu"), output = folder.Path("out.bin");
  std::mt19937 random(4545);
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> lines(random() % 80);
    std::string text = "begin 644 x\n";
    for (auto& line : lines) {
      line = RandomLine(random);
      text += line + (random() % 2 ? "\r\n" : "\n");
    }
    // Every third file stops before its zero-length line: only the blocks
    // handed on by then reach the file.
    const bool ended = round % 3 != 0;
    if (ended) text += "`\r\nend\r\n";
    folder.Write("in.uu", ToBytes(text));
    const reference::UudecodedBody body = reference::UudecodeBody(lines);
    ASSERT_EQ(UudecodeFile(input.c_str(), output.c_str()), ended ? 1 : 0) << "round " << round;
    const Bytes expected(body.bytes.begin(),
                         body.bytes.begin() + static_cast<std::ptrdiff_t>(ended ? body.bytes.size()
                                                                                : body.handedOn));
    ASSERT_EQ(TempFolder::Read(output), expected) << "round " << round;
  }
}

TEST(UuKernels, ChoiceFollowsTheProcessorAndTheCap) {
  EXPECT_EQ(codecs::ChosenUuKernels() != nullptr, cpu::ChosenLevel() >= cpu::Level::kAvx512);
}

}  // namespace
}  // namespace fe::test
