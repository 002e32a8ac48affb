#include <gtest/gtest.h>

#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr uint32_t kDeflate = 1, kBzip2 = 2, kLzma = 3;

Bytes Compressible(size_t size, uint32_t seed) {
  Bytes data = RandomBytes(size, seed);
  for (size_t i = 0; i < size; ++i) {
    if (i % 7) data[i] = static_cast<uint8_t>("compressible "[i % 13]);
  }
  return data;
}

class FileCompression : public testing::Test {
 protected:
  // Compresses `data` with type and level, expands it again; returns the
  // compressed bytes.
  Bytes RoundTrip(const Bytes& data, uint32_t type, uint32_t level, uint32_t expandType) {
    const std::string source = folder_.Write("source.bin", data);
    const std::string packed = folder_.Path("packed.bin");
    const std::string back = folder_.Path("back.bin");
    EXPECT_TRUE(CompressFileByType(source.c_str(), packed.c_str(), type, level))
        << EngineGetLastError();
    EXPECT_TRUE(ExpandFileByType(packed.c_str(), back.c_str(), expandType)) << EngineGetLastError();
    EXPECT_EQ(TempFolder::Read(back), data);
    return TempFolder::Read(packed);
  }

  TempFolder folder_;
};

TEST_F(FileCompression, RoundTripsEveryMethodAndLevel) {
  const Bytes data = Compressible(100000, 1);
  for (uint32_t type : {kDeflate, kBzip2, kLzma}) {
    for (uint32_t level : {0u, 1u, 6u, 9u}) {
      const Bytes packed = RoundTrip(data, type, level, type);
      EXPECT_LT(packed.size(), data.size() / 2) << type << " " << level;
    }
  }
}

TEST_F(FileCompression, ExpandingWithTypeZeroDetectsTheMethod) {
  const Bytes data = Compressible(5000, 2);
  for (uint32_t type : {kDeflate, kBzip2, kLzma})
    RoundTrip(data, type, 0, 0);
}

TEST_F(FileCompression, EmptySourceMakesMinimalStreams) {
  EXPECT_EQ(RoundTrip({}, kDeflate, 0, kDeflate).size(), 8u);
  EXPECT_EQ(RoundTrip({}, kBzip2, 0, kBzip2).size(), 14u);
}

TEST_F(FileCompression, EmptySourceWithLzmaIsFileEmptyBeforeTheOutputIsOpened) {
  const std::string source = folder_.Write("empty", {});
  const std::string packed = folder_.Path("packed");
  EngineSetLastError(0);
  EXPECT_FALSE(CompressFileByType(source.c_str(), packed.c_str(), kLzma, 0));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorFileEmpty));
  EXPECT_FALSE(TempFolder::Exists(packed));
}

TEST_F(FileCompression, CompressingWithTypeZeroIsInvalidParameter) {
  const std::string source = folder_.Write("s", Compressible(100, 3));
  EXPECT_FALSE(CompressFileByType(source.c_str(), folder_.Path("o").c_str(), 0, 0));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter));
}

TEST_F(FileCompression, UnknownTypeIsRefusedAfterOpeningAndLeavesNoOutput) {
  const std::string source = folder_.Write("s", Compressible(100, 3));
  const std::string out = folder_.Path("o");
  EXPECT_FALSE(CompressFileByType(source.c_str(), out.c_str(), 4, 0));
  EXPECT_FALSE(TempFolder::Exists(out));
}

TEST_F(FileCompression, OneByteFileCannotBeDetected) {
  const std::string source = folder_.Write("one", {0x78});
  EXPECT_FALSE(ExpandFileByType(source.c_str(), folder_.Path("o").c_str(), 0));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidFileType));
}

TEST_F(FileCompression, PlainTextIsOfUnknownType) {
  const std::string source = folder_.Write("text", ToBytes("plain text, not compressed"));
  EXPECT_FALSE(ExpandFileByType(source.c_str(), folder_.Path("o").c_str(), 0));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorUnknownFileType));
}

TEST_F(FileCompression, DeflateTypeDoesNotReadOtherMethods) {
  const Bytes data = Compressible(3000, 4);
  for (uint32_t type : {kBzip2, kLzma}) {
    const std::string source = folder_.Write("s", data);
    const std::string packed = folder_.Path("p");
    ASSERT_TRUE(CompressFileByType(source.c_str(), packed.c_str(), type, 0));
    EXPECT_FALSE(ExpandFileByType(packed.c_str(), folder_.Path("o").c_str(), kDeflate)) << type;
    EXPECT_FALSE(TempFolder::Exists(folder_.Path("o")));
  }
}

TEST_F(FileCompression, InPlaceRoundTripLeavesNoTemporaryFile) {
  const Bytes data = Compressible(20000, 5);
  for (uint32_t type : {kDeflate, kBzip2, kLzma}) {
    const std::string file = folder_.Write("inplace.bin", data);
    const size_t entries = folder_.Count();
    ASSERT_TRUE(CompressFileByType(file.c_str(), nullptr, type, 0)) << type;
    EXPECT_NE(TempFolder::Read(file), data);
    ASSERT_TRUE(ExpandFileByType(file.c_str(), file.c_str(), type)) << type;
    EXPECT_EQ(TempFolder::Read(file), data);
    EXPECT_EQ(folder_.Count(), entries) << type;
  }
}

TEST_F(FileCompression, DeflateLevelZeroIsSixAndAboveNineIsNine) {
  const Bytes data = Compressible(50000, 6);
  EXPECT_EQ(RoundTrip(data, kDeflate, 0, kDeflate), RoundTrip(data, kDeflate, 6, kDeflate));
  EXPECT_EQ(RoundTrip(data, kDeflate, 12, kDeflate), RoundTrip(data, kDeflate, 9, kDeflate));
}

TEST_F(FileCompression, Bzip2LevelsZeroNineAndTwelveUseBlockSizeNine) {
  const Bytes data = Compressible(50000, 7);
  const Bytes nine = RoundTrip(data, kBzip2, 9, kBzip2);
  EXPECT_EQ(nine[3], '9');  // "BZh9"
  EXPECT_EQ(RoundTrip(data, kBzip2, 0, kBzip2), nine);
  EXPECT_EQ(RoundTrip(data, kBzip2, 12, kBzip2), nine);
  EXPECT_EQ(RoundTrip(data, kBzip2, 3, kBzip2)[3], '3');
}

TEST_F(FileCompression, LzmaHeaderCarriesTheSourceSize) {
  const Bytes packed = RoundTrip(Compressible(70000, 8), kLzma, 0, kLzma);
  const Bytes expected = {0x5D, 0x00, 0x00, 0x00, 0x01, 0x70, 0x11, 0x01, 0, 0, 0, 0, 0};
  EXPECT_EQ(Bytes(packed.begin(), packed.begin() + 13), expected);
}

TEST_F(FileCompression, TruncatedStreamsFailAndLeaveNoOutput) {
  const Bytes data = RandomBytes(20000, 9);
  for (uint32_t type : {kDeflate, kBzip2}) {
    const std::string source = folder_.Write("s", data);
    const std::string packed = folder_.Path("p");
    ASSERT_TRUE(CompressFileByType(source.c_str(), packed.c_str(), type, 0));
    Bytes cut = TempFolder::Read(packed);
    cut.resize(cut.size() / 2);
    const std::string truncated = folder_.Write("t", cut);
    const std::string out = folder_.Path("o");
    EXPECT_FALSE(ExpandFileByType(truncated.c_str(), out.c_str(), type)) << type;
    EXPECT_FALSE(TempFolder::Exists(out)) << type;
  }
}

TEST_F(FileCompression, CorruptLzmaIsAnInternalFailure) {
  const std::string source = folder_.Write("s", RandomBytes(20000, 10));
  const std::string packed = folder_.Path("p");
  ASSERT_TRUE(CompressFileByType(source.c_str(), packed.c_str(), kLzma, 0));
  Bytes cut = TempFolder::Read(packed);
  cut.resize(cut.size() / 2);
  const std::string truncated = folder_.Write("t", cut);
  EXPECT_FALSE(ExpandFileByType(truncated.c_str(), folder_.Path("o").c_str(), kLzma));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInternalFailure));
  EXPECT_FALSE(TempFolder::Exists(folder_.Path("o")));
  const std::string shortHeader = folder_.Write("h", {0x5D, 0x00, 0x00, 0x00, 0x01, 0x10});
  EXPECT_FALSE(ExpandFileByType(shortHeader.c_str(), folder_.Path("o").c_str(), kLzma));
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorEndOfFile));
}

TEST_F(FileCompression, DirectorySourceIsBadFileType) {
  EXPECT_FALSE(
      CompressFileByType(folder_.Folder().c_str(), folder_.Path("o").c_str(), kDeflate, 0));
  EXPECT_EQ(EngineGetLastError(), 222u);
  EXPECT_FALSE(CompressFileByType(folder_.Folder().c_str(), folder_.Path("o").c_str(), kLzma, 0));
  EXPECT_EQ(EngineGetLastError(), 222u);
}

TEST_F(FileCompression, MissingSourceIsFileNotFound) {
  EXPECT_FALSE(CompressFileByType("", nullptr, kDeflate, 0));
  EXPECT_EQ(EngineGetLastError(), 2u);
  EXPECT_FALSE(CompressFileByType(folder_.Path("missing").c_str(), nullptr, kDeflate, 0));
  EXPECT_EQ(EngineGetLastError(), 2u);
  EXPECT_FALSE(ExpandFileByType(folder_.Path("missing").c_str(), nullptr, 0));
  EXPECT_EQ(EngineGetLastError(), 2u);
}

TEST_F(FileCompression, FailedInPlaceWorkLeavesTheSourceAlone) {
  const Bytes text = ToBytes("this is not a compressed file at all, just text");
  const std::string file = folder_.Write("keep.txt", text);
  const size_t entries = folder_.Count();
  EXPECT_FALSE(ExpandFileByType(file.c_str(), nullptr, kDeflate));
  EXPECT_FALSE(ExpandFileByType(file.c_str(), nullptr, kBzip2));
  EXPECT_FALSE(ExpandFileByType(file.c_str(), nullptr, kLzma));
  EXPECT_EQ(TempFolder::Read(file), text);
  EXPECT_EQ(folder_.Count(), entries);
}

}  // namespace
}  // namespace fe::test
