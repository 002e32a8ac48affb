// Path and temporary-file helpers. Expectations that depend on drive
// letters and '\' run on the Windows build only.
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#endif

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "scoped_variable.h"
#include "test_support.h"

namespace fe::test {
namespace {

std::string Normalized(const char* path) {
  char buffer[300];
  std::strcpy(buffer, path);
  return NormalizePath(buffer);
}

#ifdef _WIN32
constexpr char kSep = '\\';
#else
constexpr char kSep = '/';
#endif

// Turns '/' in a pattern into this platform's separator.
std::string Native(std::string path) {
  for (char& c : path) {
    if (c == '/') c = kSep;
  }
  return path;
}

TEST(NormalizePath, RemovesDotSegments) {
  EXPECT_EQ(Normalized(Native("a/b/./c").c_str()), Native("a/b/c"));
  EXPECT_EQ(Normalized(Native("a/b/../c").c_str()), Native("a/c"));
  EXPECT_EQ(Normalized(Native("a/b/c/../../d").c_str()), Native("a/d"));
}

TEST(NormalizePath, SegmentEndingInADotIsRemovedLikeDot) {
  EXPECT_EQ(Normalized(Native("a/b./c").c_str()), Native("a/c"));
  // "x.." counts as "..": two segments back, the second to the start.
  EXPECT_EQ(Normalized(Native("a/x../b/c").c_str()), Native("/b/c"));
}

TEST(NormalizePath, FinalSegmentIsNeverTouched) {
  EXPECT_EQ(Normalized(Native("a/b/..").c_str()), Native("a/b/.."));
  EXPECT_EQ(Normalized(Native("a/file.").c_str()), Native("a/file."));
}

#ifdef _WIN32
TEST(NormalizePath, SlashesBecomeBackslashesOnWindows) {
  EXPECT_EQ(Normalized("C:/a/b/../c"), "C:\\a\\c");
  EXPECT_EQ(Normalized("a\\b.\\c"), "a\\c");
}
#else
TEST(NormalizePath, BackslashIsAnOrdinaryCharacterOnLinux) {
  // "a\\b" is one segment: ".." takes it and the (absent) one before it.
  EXPECT_EQ(Normalized("a\\b/../c"), "/c");
  EXPECT_EQ(Normalized("x/a\\b/../c"), "x/c");
  EXPECT_EQ(Normalized("C:/a/b/../c"), "C:/a/c");
}
#endif

TEST(CombinePath, JoinsWithOneSeparator) {
  char out[260];
  EXPECT_EQ(std::string(CombinePath(Native("/base").c_str(), "name", out)), Native("/base/name"));
  EXPECT_EQ(std::string(CombinePath(Native("/base/").c_str(), "name", out)), Native("/base/name"));
  EXPECT_EQ(std::string(CombinePath(Native("/base").c_str(), "", out)), Native("/base"));
  EXPECT_EQ(std::string(CombinePath("", "name", out)), "name");
  EXPECT_EQ(std::string(CombinePath(Native("/base").c_str(), Native("/abs").c_str(), out)),
            Native("/abs"));
  EXPECT_EQ(std::string(CombinePath(Native("/base/sub").c_str(), Native("../x").c_str(), out)),
            Native("/base/x"));
}

TEST(CombinePath, OutputMayBeAnArgument) {
  char buffer[260];
  std::strcpy(buffer, Native("/base").c_str());
  EXPECT_EQ(std::string(CombinePath(buffer, "name", buffer)), Native("/base/name"));
}

TEST(CombinePath, AllocatesWhenGivenNoOutput) {
  char* out = CombinePath(Native("/a").c_str(), "b", nullptr);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(std::string(out), Native("/a/b"));
  EngineFree(out);
}

TEST(GetFullPathFromName, RelativeNamesJoinTheCurrentDirectory) {
  char cwd[260];
  ASSERT_GT(GetDriveDirectory(0, cwd), 0u);
  char out[261];
  ASSERT_NE(GetFullPathFromName("some.txt", out), nullptr);
  std::string expected = cwd;
  if (expected.back() != kSep) expected += kSep;
  EXPECT_EQ(std::string(out), expected + "some.txt");
}

TEST(GetFullPathFromName, EmptyNameIsInvalidParameter) {
  char out[261];
  EngineSetLastError(0);
  EXPECT_EQ(GetFullPathFromName("", out), nullptr);
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter));
  EXPECT_EQ(GetFullPathFromName(nullptr, out), nullptr);
}

TEST(GetPathDirectory, OfAnExistingDirectoryIsItsFullPath) {
  char temp[260];
  GetTempDirectory(temp);
  char out[261];
  ASSERT_NE(GetPathDirectory(temp, out), nullptr);
  std::string expected = temp;
  EXPECT_EQ(std::string(out), expected);
}

TEST(GetPathDirectory, OfAFileIsItsFolder) {
  char out[261];
#ifdef _WIN32
  ASSERT_NE(GetPathDirectory("C:\\x.txt", out), nullptr);
  EXPECT_STREQ(out, "C:\\");
  ASSERT_NE(GetPathDirectory("C:\\folder\\x.txt", out), nullptr);
  EXPECT_STREQ(out, "C:\\folder");
#else
  ASSERT_NE(GetPathDirectory("/x.txt", out), nullptr);
  EXPECT_STREQ(out, "/");
  ASSERT_NE(GetPathDirectory("/folder/x.txt", out), nullptr);
  EXPECT_STREQ(out, "/folder");
#endif
}

TEST(GetCurrentDrive, FollowsTheCurrentDirectory) {
#ifdef _WIN32
  char cwd[260];
  GetDriveDirectory(0, cwd);
  EXPECT_EQ(GetCurrentDrive(), toupper(cwd[0]) - 'A' + 1);
#else
  EXPECT_EQ(GetCurrentDrive(), 0);
#endif
  char out[260];
  EXPECT_EQ(GetDriveDirectory(27, out), 0u);
}

std::string WindowsDirectory() {
  char windows[260];
  platform::WindowsDirectory(windows, 260);
  return windows;
}

TEST(GetTempDirectory, TmpNamingAMissingDirectoryGivesTheWindowsDirectory) {
  char existing[260];
  GetTempDirectory(existing);
  ScopedVariable tmp("TMP", Native("/no/such/folder").c_str());
  ScopedVariable temp("TEMP", existing);
  char out[260];
  // TEMP is never consulted once TMP is set.
  EXPECT_EQ(std::string(GetTempDirectory(out)), WindowsDirectory());
}

TEST(CreateTempFileName, MakesAnEmptyFileWithTheTickCountName) {
  char out[260];
  ASSERT_NE(CreateTempFileName(nullptr, nullptr, out), nullptr);
  const std::string name = out;
  const std::string file = name.substr(name.find_last_of(kSep) + 1);
  ASSERT_EQ(file.size(), 11u) << file;
  EXPECT_EQ(file.substr(0, 2), "~r");
  EXPECT_EQ(file.substr(7), ".tmp");
  for (char c : file.substr(2, 5))
    EXPECT_TRUE(isxdigit(c) && !isupper(c)) << file;
  const platform::FileHandle handle = platform::OpenFile(out, platform::FileOpen::kRead);
  ASSERT_NE(handle, platform::kInvalidFile);
  uint64_t size = 1;
  platform::GetFileSize(handle, &size);
  platform::CloseFile(handle);
  EXPECT_EQ(size, 0u);
  platform::RemoveFile(out);
}

TEST(CreateTempFileName, MissingDirectoryGivesNull) {
  char out[260];
  EXPECT_EQ(CreateTempFileName(Native("/no/such/folder").c_str(), nullptr, out), nullptr);
  EngineSetLastError(0);
  EXPECT_EQ(CreateTempFileName(nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(EngineGetLastError(), FE_CONTROL_ERROR(ovErrorInvalidParameter));
}

TEST(CreateTempFileName, TmpNamingAMissingDirectoryUsesTheWindowsDirectory) {
  ScopedVariable tmp("TMP", Native("/no/such/folder").c_str());
  char out[260];
  ASSERT_NE(CreateTempFileName(nullptr, nullptr, out), nullptr);
  std::string expected = WindowsDirectory();
  if (expected.back() != kSep) expected += kSep;
  EXPECT_EQ(std::string(out).substr(0, expected.size()), expected);
  platform::RemoveFile(out);
}

}  // namespace
}  // namespace fe::test
