// ConvertTextFile.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "file_encoder.h"
#include "scoped_variable.h"
#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr uint32_t kUtf8 = 65001;
constexpr uint32_t kUtf16 = 1200;
constexpr uint32_t kUtf16BigEndian = 1201;
constexpr uint32_t kLatin1 = 28591;

// A folder for the test whose temporary files go to a folder of their own,
// so that what a conversion leaves there can be counted.
class TextFileConversion : public ::testing::Test {
 protected:
  TextFileConversion()
      : tmpdir_("TMPDIR", temporaries_.Folder().c_str()),
        tmp_("TMP", temporaries_.Folder().c_str()),
        temp_("TEMP", temporaries_.Folder().c_str()) {}

  bool Convert(const std::string& input, uint32_t source, const std::string& output,
               uint32_t destination, uint32_t options) {
    return ConvertTextFile(folder_.Path(input).c_str(), source, folder_.Path(output).c_str(),
                           destination, options) != 0;
  }
  std::string Write(const std::string& name, const std::string& content) {
    return folder_.Write(name, ToBytes(content));
  }
  std::string Read(const std::string& name) {
    return ToString(TempFolder::Read(folder_.Path(name)));
  }

  TempFolder folder_;
  TempFolder temporaries_;
  ScopedVariable tmpdir_;
  ScopedVariable tmp_;
  ScopedVariable temp_;
};

std::string Utf16(const std::u16string& text, bool bigEndian = false) {
  std::string bytes;
  for (char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST_F(TextFileConversion, SameCodePageWithoutOptionsCopiesUnchanged) {
  const std::string content = "one\r\ntwo\n\xC3\xA9 and a stray \xFF byte";
  Write("in.txt", content);
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kUtf8, 0));
  EXPECT_EQ(EngineGetLastError(), 0u);
  EXPECT_EQ(Read("out.txt"), content);
}

TEST_F(TextFileConversion, LineFeedModeTurnsCrLfIntoLf) {
  Write("in.txt", "one\r\ntwo\r\nthree\r\n");
  ASSERT_TRUE(
      Convert("in.txt", kUtf8, "out.txt", kUtf8, fileConvertNormalize | FE_CONVERT_LINE_END_LF));
  EXPECT_EQ(Read("out.txt"), "one\ntwo\nthree\n");
  // A mode bit alone turns the rewriting on; without a mode it is CR LF.
  ASSERT_TRUE(Convert("in.txt", kUtf8, "lf.txt", kUtf8, FE_CONVERT_LINE_END_LF));
  EXPECT_EQ(Read("lf.txt"), "one\ntwo\nthree\n");
  Write("unix.txt", "a\nb\n");
  ASSERT_TRUE(Convert("unix.txt", kUtf8, "crlf.txt", kUtf8, fileConvertNormalize));
  EXPECT_EQ(Read("crlf.txt"), "a\r\nb\r\n");
}

TEST_F(TextFileConversion, DetectionReadsTheUtf16MarkAndSkipsIt) {
  Write("in.txt", "\xFF\xFE" + Utf16(u"h\u00E9!"));
  ASSERT_TRUE(Convert("in.txt", kLatin1, "out.txt", kUtf8, fileConvertUnicode));
  EXPECT_EQ(Read("out.txt"), "h\xC3\xA9!");
}

TEST_F(TextFileConversion, DetectionTakesAsciiForUtf8) {
  Write("in.txt", "plain ascii text\n");
  ASSERT_TRUE(Convert("in.txt", kLatin1, "out.txt", kUtf16, fileConvertUnicode));
  EXPECT_EQ(Read("out.txt"), "\xFF\xFE" + Utf16(u"plain ascii text\n"));
}

TEST_F(TextFileConversion, DetectionOfUtf16WithoutAMark) {
  Write("le.txt", Utf16(u"gr\u00FC\u00DFe aus k\u00F6ln"));
  ASSERT_TRUE(Convert("le.txt", kLatin1, "out.txt", kUtf8, fileConvertUnicode));
  EXPECT_EQ(Read("out.txt"),
            "gr\xC3\xBC\xC3\x9F"
            "e aus k\xC3\xB6ln");
  Write("be.txt", Utf16(u"gr\u00FC\u00DFe aus k\u00F6ln", true));
  ASSERT_TRUE(Convert("be.txt", kLatin1, "out2.txt", kUtf8, fileConvertUnicode));
  EXPECT_EQ(Read("out2.txt"),
            "gr\xC3\xBC\xC3\x9F"
            "e aus k\xC3\xB6ln");
}

TEST_F(TextFileConversion, CarriageReturnModeDropsALineEndClosingAChunkOrTheFile) {
  const std::string first(4095, 'x');
  Write("in.txt", first + "\n" + "y\nz\n");
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kUtf8, FE_CONVERT_LINE_END_CR));
  EXPECT_EQ(Read("out.txt"), first + "y\rz");
}

TEST_F(TextFileConversion, FailedConversionLeavesItsTemporaryFileAndTheOutput) {
  Write("in.txt", "bad \xFF byte");
  Write("out.txt", "keep me");
  EXPECT_FALSE(Convert("in.txt", kUtf8, "out.txt", kLatin1, fileConvertStrict));
  EXPECT_EQ(EngineGetLastError(), 1113u);
  EXPECT_EQ(Read("out.txt"), "keep me");
  // Detection refused the input before a temporary file was made.
  EXPECT_EQ(temporaries_.Count(), 0u);
  // Unmappable in the destination: the conversion itself fails.
  Write("euro.txt", "10 \xE2\x82\xAC");
  EXPECT_FALSE(Convert("euro.txt", kUtf8, "out.txt", kLatin1, fileConvertStrict));
  EXPECT_EQ(EngineGetLastError(), 1113u);
  EXPECT_EQ(Read("out.txt"), "keep me");
  ASSERT_EQ(temporaries_.Count(), 1u);
  const auto left =
      std::filesystem::directory_iterator(temporaries_.Folder())->path().filename().string();
  EXPECT_EQ(left.substr(0, 3), "tmp");
}

TEST_F(TextFileConversion, UnmappableCharactersBecomeQuestionMarksWithoutStrict) {
  Write("in.txt", "10 \xE2\x82\xAC \xC3\xA9");
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kLatin1, 0));
  EXPECT_EQ(Read("out.txt"), "10 ? \xE9");
}

TEST_F(TextFileConversion, SequencesCutByAChunkAreCarriedOver) {
  const std::string text = std::string(4095, 'a') + "\xE2\x82\xAC" + std::string(10, 'b');
  Write("in.txt", text);
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kUtf16, 0));
  EXPECT_EQ(Read("out.txt"),
            "\xFF\xFE" + Utf16(std::u16string(4095, u'a') + u"\u20AC" + std::u16string(10, u'b')));
}

TEST_F(TextFileConversion, IncompleteSequenceAtTheEndFails) {
  Write("in.txt", "abc\xE2\x82");
  EXPECT_FALSE(Convert("in.txt", kUtf8, "out.txt", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 1113u);
  EXPECT_FALSE(TempFolder::Exists(folder_.Path("out.txt")));
}

TEST_F(TextFileConversion, OddUtf16LengthFails) {
  Write("in.txt", "\x41\x00\x42");
  EXPECT_FALSE(Convert("in.txt", kUtf16, "out.txt", kUtf8, 0));
  EXPECT_EQ(EngineGetLastError(), 1113u);
}

TEST_F(TextFileConversion, ByteOrderMarks) {
  Write("in.txt", "hi");
  ASSERT_TRUE(Convert("in.txt", kLatin1, "bom.txt", kUtf8, fileConvertUtf8Bom));
  EXPECT_EQ(Read("bom.txt"), "\xEF\xBB\xBFhi");
  ASSERT_TRUE(Convert("in.txt", kLatin1, "le.txt", kUtf16, fileConvertNoBom));
  EXPECT_EQ(Read("le.txt"), Utf16(u"hi"));
  ASSERT_TRUE(Convert("in.txt", kLatin1, "be.txt", kUtf16BigEndian, 0));
  EXPECT_EQ(Read("be.txt"), "\xFE\xFF" + Utf16(u"hi", true));
  ASSERT_TRUE(Convert("be.txt", kLatin1, "back.txt", kLatin1, fileConvertUnicode));
  EXPECT_EQ(Read("back.txt"), "hi");
}

TEST_F(TextFileConversion, MarkOptionsThatDoNotFitTheDestination) {
  Write("in.txt", "hi");
  EXPECT_FALSE(Convert("in.txt", kUtf8, "out.txt", kLatin1, fileConvertUtf8Bom));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(Convert("in.txt", kLatin1, "out.txt", kUtf8, fileConvertUtf8Bom | fileConvertNoBom));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(Convert("in.txt", kUtf8, "out.txt", kLatin1, fileConvertNoBom));
  EXPECT_EQ(EngineGetLastError(), 87u);
}

TEST_F(TextFileConversion, ValidationWritesNoOutput) {
  Write("good.txt", "caf\xC3\xA9");
  Write("bad.txt", "caf\xE9");
  EXPECT_TRUE(ConvertTextFile(folder_.Path("good.txt").c_str(), kUtf8, nullptr, kLatin1,
                              fileCOnvertValidate | fileConvertStrict));
  EXPECT_FALSE(ConvertTextFile(folder_.Path("bad.txt").c_str(), kUtf8, nullptr, kUtf16,
                               fileCOnvertValidate | fileConvertStrict));
  EXPECT_EQ(EngineGetLastError(), 1113u);
  EXPECT_EQ(folder_.Count(), 2u);
  EXPECT_EQ(temporaries_.Count(), 0u);
}

TEST_F(TextFileConversion, EmptyInputGivesAnEmptyOutput) {
  Write("empty.txt", "");
  ASSERT_TRUE(Convert("empty.txt", kUtf8, "out.txt", kUtf16, 0));
  EXPECT_EQ(Read("out.txt"), "");
}

TEST_F(TextFileConversion, ArgumentAndFileErrors) {
  Write("in.txt", "x");
  EXPECT_FALSE(ConvertTextFile(nullptr, kUtf8, folder_.Path("o").c_str(), kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(ConvertTextFile("   ", kUtf8, folder_.Path("o").c_str(), kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(ConvertTextFile(folder_.Path("in.txt").c_str(), kUtf8, "", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(Convert("in.txt", 77777, "o", kUtf8, 0));
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_FALSE(Convert("missing.txt", kUtf8, "o", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 2u);
  std::filesystem::create_directory(folder_.Path("dir"));
  EXPECT_FALSE(Convert("dir", kUtf8, "o", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 1006u);
  EXPECT_FALSE(Convert("in.txt", kUtf8, "dir", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 1006u);
  Write("locked.txt", "keep");
  std::filesystem::permissions(folder_.Path("locked.txt"), std::filesystem::perms::owner_read);
  EXPECT_FALSE(Convert("in.txt", kUtf8, "locked.txt", kUtf16, 0));
  EXPECT_EQ(EngineGetLastError(), 6009u);
  EXPECT_EQ(Read("locked.txt"), "keep");
}

TEST_F(TextFileConversion, NamesAreTrimmedAndExpanded) {
  Write("in.txt", "x");
  const ScopedVariable variable("FE_CONVERT_FOLDER", folder_.Folder().c_str());
  ASSERT_TRUE(ConvertTextFile(("  %FE_CONVERT_FOLDER%/in.txt"), kUtf8,
                              "%FE_CONVERT_FOLDER%/out.txt", kUtf16, 0));
  EXPECT_EQ(Read("out.txt"), "\xFF\xFE" + Utf16(u"x"));
}

TEST_F(TextFileConversion, ReplacesAnExistingOutputAndKeepsItsPermissions) {
  Write("in.txt", "new");
  Write("out.txt", "old content");
  namespace fs = std::filesystem;
  fs::permissions(folder_.Path("out.txt"),
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kUtf16, 0));
  EXPECT_EQ(Read("out.txt"), "\xFF\xFE" + Utf16(u"new"));
#ifndef _WIN32  // Windows files carry attributes, not permission bits
  EXPECT_EQ(fs::status(folder_.Path("out.txt")).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
#endif
  EXPECT_EQ(temporaries_.Count(), 0u);
}

TEST_F(TextFileConversion, PreserveKeepsTheLastWriteTimeAndReadOnly) {
  namespace fs = std::filesystem;
  Write("in.txt", "x");
  const auto stamp = fs::last_write_time(folder_.Path("in.txt")) - std::chrono::hours(50);
  fs::last_write_time(folder_.Path("in.txt"), stamp);
  ASSERT_TRUE(Convert("in.txt", kUtf8, "out.txt", kUtf16, fileConvertPreserve));
  // Kept to the 100-nanosecond unit of file times.
  const auto kept = fs::last_write_time(folder_.Path("out.txt"));
  EXPECT_LT(std::chrono::abs(kept - stamp), std::chrono::microseconds(1));
  fs::permissions(folder_.Path("in.txt"), fs::perms::owner_read);
  ASSERT_TRUE(Convert("in.txt", kUtf8, "ro.txt", kUtf16, fileConvertPreserve));
  EXPECT_EQ(fs::status(folder_.Path("ro.txt")).permissions() & fs::perms::owner_write,
            fs::perms::none);
}

}  // namespace
}  // namespace fe::test
