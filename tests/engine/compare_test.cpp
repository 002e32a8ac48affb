// CompareFiles: the order of its checks and the code of the first that
// fails, the path and digest text rules, and the option resolution.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "scoped_variable.h"
#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

namespace fs = std::filesystem;

std::string Sha256Of(const std::string& path) {
  char text[65];
  EXPECT_EQ(GetFileDigestSHA256(path.c_str(), text), 64);
  return text;
}

std::string Lower(std::string text) {
  for (char& c : text)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

class CompareFilesTest : public testing::Test {
 protected:
  // The code the comparison leaves: 0 on success, else the control number.
  static uint32_t Code(const std::string& a, const char* b, uint32_t options,
                       const char* digest = nullptr) {
    EngineSetLastError(12345);
    const bool same = CompareFiles(a.c_str(), b, options, digest) != 0;
    const uint32_t code = EngineGetLastError();
    EXPECT_EQ(same, code == 0) << code;
    return code == 0 ? 0 : code & 0xFFFF;
  }
  static uint32_t Code(const std::string& a, const std::string& b, uint32_t options,
                       const char* digest = nullptr) {
    return Code(a, b.c_str(), options, digest);
  }

  TempFolder folder_;
};

TEST_F(CompareFilesTest, FileWithItselfSucceedsWithoutReadingIt) {
  const std::string path = folder_.Write("Self.bin", RandomBytes(5000, 1));
#ifdef _WIN32
  std::string other = path;
  for (char& c : other)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
#else
  const std::string other = path;  // Linux paths differ by case
#endif
  EXPECT_EQ(Code(path, other, fileCompareContents | fileCompareCreated | fileCompareModified), 0u);
}

TEST_F(CompareFilesTest, SameSizeDifferentBytesIsAContentMismatch) {
  const std::string a = folder_.Write("a", RandomBytes(40000, 1));
  Bytes changed = RandomBytes(40000, 1);
  changed[39999] ^= 1;
  const std::string b = folder_.Write("b", changed);
  EXPECT_EQ(Code(a, b, fileCompareDefault), static_cast<uint32_t>(ovErrorFileContentMismatch));
}

TEST_F(CompareFilesTest, DifferentSizesMismatchWhateverTheOptions) {
  const std::string a = folder_.Write("a", RandomBytes(100, 1));
  const std::string b = folder_.Write("b", RandomBytes(101, 1));
  const std::string digest = Sha256Of(a);
  for (uint32_t options : {0u, 1u, 2u, 4u, 7u, 256u | 1024u}) {
    EXPECT_EQ(Code(a, b, options, options & 1024 ? digest.c_str() : nullptr),
              static_cast<uint32_t>(ovErrorFileSizeMismatch))
        << options;
  }
  EXPECT_EQ(Code(a, b, 0, digest.c_str()), static_cast<uint32_t>(ovErrorFileSizeMismatch));
}

TEST_F(CompareFilesTest, CopyWithAnotherModificationTime) {
  const Bytes data = RandomBytes(3000, 2);
  const std::string a = folder_.Write("a", data);
  const std::string b = folder_.Write("b", data);
  fs::last_write_time(b, fs::last_write_time(a) - std::chrono::hours(1));
  EXPECT_EQ(Code(a, b, fileCompareContents), 0u);
  EXPECT_EQ(Code(a, b, fileCompareModified), static_cast<uint32_t>(ovErrorFileTimeMismatch));
  EXPECT_EQ(Code(a, b, fileCompareContents | fileCompareModified),
            static_cast<uint32_t>(ovErrorFileTimeMismatch));
}

TEST_F(CompareFilesTest, Sha256DigestInLowercaseWithAndWithoutPrefix) {
  const std::string a = folder_.Write("a", RandomBytes(777, 3));
  const std::string digest = Lower(Sha256Of(a));
  EXPECT_EQ(Code(a, nullptr, 0, digest.c_str()), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, ("0x" + digest).c_str()), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, ("0X" + digest).c_str()), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, digest.substr(0, 63).c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestType));
}

TEST_F(CompareFilesTest, DigestTextRules) {
  const std::string a = folder_.Write("a", RandomBytes(777, 3));
  const std::string digest = Sha256Of(a);
  // Mixed case and leading blanks are fine.
  std::string mixed = digest;
  for (size_t i = 0; i < mixed.size(); i += 2)
    mixed[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(mixed[i])));
  EXPECT_EQ(Code(a, nullptr, 0, mixed.c_str()), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, (" \t" + digest).c_str()), 0u);
  // A trailing blank is not a digit; lengths outside 32..66 are refused.
  EXPECT_EQ(Code(a, nullptr, 0, (digest + " ").c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  EXPECT_EQ(Code(a, nullptr, 0, std::string(31, 'a').c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  EXPECT_EQ(Code(a, nullptr, 0, std::string(67, 'a').c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  EXPECT_EQ(Code(a, nullptr, 0, ("g" + digest.substr(1)).c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  // "&H" is looked for with the ampersand as tenth character, so a Basic
  // prefix is not skipped and fails as a non-digit.
  EXPECT_EQ(Code(a, nullptr, 0, ("&H" + digest).c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  EXPECT_EQ(Code(a, nullptr, 0, ("0h0000000&" + digest.substr(0, 30)).c_str()),
            static_cast<uint32_t>(ovErrorInvalidDigestValue));
  // Blanks alone are no digest: one file cannot be compared with nothing.
  EXPECT_EQ(Code(a, nullptr, 0, "   "), static_cast<uint32_t>(ovErrorInvalidDigestValue));
  // A wrong digest of the right length.
  std::string wrong = digest;
  wrong[5] = wrong[5] == '0' ? '1' : '0';
  EXPECT_EQ(Code(a, nullptr, 0, wrong.c_str()), static_cast<uint32_t>(ovErrorFileDigestMismatch));
}

TEST_F(CompareFilesTest, DigestTypeResolution) {
  const std::string a = folder_.Write("a", RandomBytes(500, 4));
  char md5[65], sha1[65];
  ASSERT_EQ(GetFileDigestMD5(a.c_str(), md5), 32);
  ASSERT_EQ(GetFileDigestSHA1(a.c_str(), sha1), 40);
  const std::string sha256 = Sha256Of(a);
  EXPECT_EQ(Code(a, nullptr, fileCompareMD5, sha1),
            static_cast<uint32_t>(ovErrorInvalidDigestType));
  EXPECT_EQ(Code(a, nullptr, fileCompareMD5 | fileCompareSHA256, sha256.c_str()), 0u);
  EXPECT_EQ(Code(a, nullptr, fileCompareMD5 | fileCompareSHA1, sha1), 0u);
  EXPECT_EQ(Code(a, nullptr, fileCompareMD5, md5), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, md5), 0u);
  EXPECT_EQ(Code(a, nullptr, 0, sha1), 0u);
  // A digest bit without a digest is dropped; without any file check left
  // one file alone is refused.
  EXPECT_EQ(Code(a, nullptr, fileCompareSHA256), static_cast<uint32_t>(ovErrorInvalidDigestValue));
}

TEST_F(CompareFilesTest, SameSizeFilesWithADigestCompareOnlySizeAndDigest) {
  const std::string a = folder_.Write("a", RandomBytes(2000, 5));
  const std::string b = folder_.Write("b", RandomBytes(2000, 6));
  EXPECT_EQ(Code(a, b, 0, Sha256Of(a).c_str()), 0u);
  EXPECT_EQ(Code(a, b, 0, Sha256Of(b).c_str()), static_cast<uint32_t>(ovErrorFileDigestMismatch));
  EXPECT_EQ(Code(a, b, fileCompareContents, Sha256Of(a).c_str()),
            static_cast<uint32_t>(ovErrorFileContentMismatch));
}

TEST_F(CompareFilesTest, TwoEmptyFilesAreEqual) {
  const std::string a = folder_.Write("a", {});
  const std::string b = folder_.Write("b", {});
  EXPECT_EQ(Code(a, b, 0), 0u);
  EXPECT_EQ(Code(a, b, fileCompareContents), 0u);
}

TEST_F(CompareFilesTest, OneFileAloneNeedsADigest) {
  const std::string a = folder_.Write("a", ToBytes("alone"));
  EXPECT_EQ(Code(a, nullptr, 0), static_cast<uint32_t>(ovErrorInvalidDigestValue));
  EXPECT_EQ(Code(a, nullptr, fileCompareContents), static_cast<uint32_t>(ovErrorInvalidFileName));
  EXPECT_EQ(Code(a, "", fileCompareModified), static_cast<uint32_t>(ovErrorInvalidFileName));
  EXPECT_EQ(Code("", a, 0), static_cast<uint32_t>(ovErrorInvalidFileName));
}

TEST_F(CompareFilesTest, MissingFilesAndDirectories) {
  const std::string a = folder_.Write("a", ToBytes("here"));
  EXPECT_EQ(Code(folder_.Path("missing"), a, 0), static_cast<uint32_t>(ovErrorFileNotFound));
  EXPECT_EQ(Code(a, folder_.Path("missing"), 0), static_cast<uint32_t>(ovErrorFileNotFound));
  EXPECT_EQ(Code(folder_.Folder(), a, 0), static_cast<uint32_t>(ovErrorInvalidFileType));
  EXPECT_EQ(Code(a, folder_.Folder(), 0), static_cast<uint32_t>(ovErrorInvalidFileType));
}

TEST_F(CompareFilesTest, PathRules) {
  const std::string a = folder_.Write("a.txt", ToBytes("same"));
  const std::string b = folder_.Write("b.txt", ToBytes("same"));
  // Blanks around and one trailing full stop are removed.
  EXPECT_EQ(Code("  " + a + ". ", b, 0), 0u);
  for (const char* bad : {"<", ">", "|", "?", "*", "\""}) {
    EXPECT_EQ(Code(folder_.Path(std::string("x") + bad), b, 0),
              static_cast<uint32_t>(ovErrorInvalidFileName))
        << bad;
  }
  EXPECT_EQ(Code(a + "\x01", b, 0), static_cast<uint32_t>(ovErrorInvalidFileName));
  // A colon only as the second character (after a drive letter).
  EXPECT_EQ(Code(a + ":y", b, 0), static_cast<uint32_t>(ovErrorInvalidFileName));
  // 511 characters with the terminator at most.
  EXPECT_EQ(Code(std::string(511, 'x'), b, 0), static_cast<uint32_t>(ovErrorInvalidFileName));
}

TEST_F(CompareFilesTest, EnvironmentVariablesAreExpanded) {
  const std::string a = folder_.Write("a.txt", ToBytes("same"));
  const std::string b = folder_.Write("b.txt", ToBytes("same"));
  const ScopedVariable folder("FE_COMPARE_FOLDER", folder_.Folder().c_str());
  const std::string sep(1, a[folder_.Folder().size()]);
  EXPECT_EQ(Code("%FE_COMPARE_FOLDER%" + sep + "a.txt", "%FE_COMPARE_FOLDER%" + sep + "b.txt", 0),
            0u);
  // An expansion longer than 510 characters is no name.
  const ScopedVariable longer("FE_COMPARE_LONG", std::string(600, 'x').c_str());
  EXPECT_EQ(Code(a, "%FE_COMPARE_LONG%", 0), static_cast<uint32_t>(ovErrorInvalidFileName));
}

}  // namespace
}  // namespace fe::test
