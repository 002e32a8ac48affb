// The file encoding driver and the file codecs: uuencode, yEnc and the file
// forms of quoted-printable, Base32, Base58 and Base85.
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "reference/yenc_reference.h"
#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

constexpr uint32_t kQuoted = 2, kUucode = 3, kYencode = 4, kBase58 = 6, kBase32 = 7, kBase85 = 8,
                   kCompressed = 65536;

// The engine's temporary files in the temporary directory.
std::set<std::string> TemporaryFiles() {
  char folder[260];
  GetTempDirectory(folder);
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name.size() == 11 && name.rfind("~r", 0) == 0) names.insert(entry.path().string());
  }
  return names;
}

class FileEncoding : public testing::Test {
 protected:
  std::string Encoded(const Bytes& data, uint32_t flags, const std::string& name = "input.bin") {
    const std::string input = folder_.Write(name, data);
    const std::string output = folder_.Path("encoded.txt");
    EXPECT_TRUE(EncodeFileByType(input.c_str(), output.c_str(), flags)) << flags;
    return ToString(TempFolder::Read(output));
  }

  Bytes Decoded(const std::string& text, uint32_t flags, bool* ok = nullptr) {
    const std::string input = folder_.Write("encoded.txt", ToBytes(text));
    const std::string output = folder_.Path("decoded.bin");
    const bool done = DecodeFileByType(input.c_str(), output.c_str(), flags);
    if (ok) *ok = done;
    return TempFolder::Exists(output) ? TempFolder::Read(output) : Bytes{};
  }

  TempFolder folder_;
};

TEST_F(FileEncoding, EveryFileEncodingRoundTrips) {
  for (size_t size : {0u, 1u, 2u, 3u, 44u, 45u, 46u, 127u, 128u, 129u, 511u, 512u, 513u, 5000u}) {
    const Bytes data = RandomBytes(size, static_cast<uint32_t>(size));
    for (uint32_t flags : {kQuoted, kUucode, kYencode, kBase58, kBase32, kBase85,
                           kQuoted | kCompressed, kUucode | kCompressed, kYencode | kCompressed}) {
      // Twice the input is too little room for Base58 of one or two bytes.
      if (flags == kBase58 && size > 0 && size < 3) continue;
      const std::string text = Encoded(data, flags);
      bool ok = false;
      EXPECT_EQ(Decoded(text, flags, &ok), data) << flags << " size " << size;
      EXPECT_TRUE(ok) << flags << " size " << size;
    }
  }
}

TEST_F(FileEncoding, Base64RowsAreRefusedWithoutOutput) {
  const std::string input = folder_.Write("in", ToBytes("data"));
  const std::string output = folder_.Path("out");
  for (uint32_t flags : {0u, 1u}) {
    EngineSetLastError(0);
    EXPECT_FALSE(EncodeFileByType(input.c_str(), output.c_str(), flags));
    EXPECT_EQ(EngineGetLastError(), 87u);
    EngineSetLastError(0);
    EXPECT_FALSE(DecodeFileByType(input.c_str(), output.c_str(), flags));
    EXPECT_EQ(EngineGetLastError(), 87u);
    EXPECT_FALSE(TempFolder::Exists(output));
  }
}

TEST_F(FileEncoding, NumberFiveFailsAndLeavesTheTemporaryFileWhenDecompressing) {
  const std::string input = folder_.Write("in", ToBytes("data"));
  const std::string output = folder_.Path("out");
  EXPECT_FALSE(EncodeFileByType(input.c_str(), output.c_str(), 5));
  EXPECT_FALSE(DecodeFileByType(input.c_str(), output.c_str(), 5));
  EXPECT_FALSE(DecodeFileByType(input.c_str(), output.c_str(), 9));
  // The temporary name reserved for the decoded data stays behind.
  const std::set<std::string> before = TemporaryFiles();
  EXPECT_FALSE(DecodeFileByType(input.c_str(), output.c_str(), 5 | kCompressed));
  std::set<std::string> left = TemporaryFiles();
  for (const std::string& name : before)
    left.erase(name);
  EXPECT_EQ(left.size(), 1u);
  // Tidy up: a name taken within the same millisecond would block the next
  // temporary file.
  for (const std::string& name : left)
    std::filesystem::remove(name);
}

TEST_F(FileEncoding, CompressedUuencodeNamesTheTemporaryFile) {
  const std::string text = Encoded(Bytes(5000, 'a'), kUucode | kCompressed);
  ASSERT_EQ(text.substr(0, 12), "begin 644 ~r");
  EXPECT_EQ(text.substr(text.find("\r\n") - 4, 4), ".tmp");
}

TEST_F(FileEncoding, ExistingOutputIsReplaced) {
  const std::string output = folder_.Write("encoded.txt", Bytes(10000, 'x'));
  const std::string input = folder_.Write("in", ToBytes("abc"));
  ASSERT_TRUE(EncodeFileByType(input.c_str(), output.c_str(), kBase32));
  EXPECT_EQ(ToString(TempFolder::Read(output)), "MFRGG=======\r\n");
}

TEST_F(FileEncoding, Base32FileWithAForeignCharacterInsideAGroupFails) {
  bool ok = true;
  const Bytes decoded = Decoded("MZ!XW6YTB", kBase32, &ok);
  EXPECT_FALSE(ok);
  // The failing chunk's bytes are not written; the (empty) output stays.
  EXPECT_TRUE(TempFolder::Exists(folder_.Path("decoded.bin")));
  EXPECT_TRUE(decoded.empty());
  // Between groups the same character is passed over.
  EXPECT_EQ(ToString(Decoded("MZXW6YTB!OI======", kBase32, &ok)), "foobar");
  EXPECT_TRUE(ok);
}

TEST_F(FileEncoding, NamesAreChecked) {
  const std::string input = folder_.Write("in", ToBytes("abc"));
  for (uint32_t flags : {kBase58, kBase32, kBase85}) {
    EngineSetLastError(0);
    EXPECT_FALSE(EncodeFileByType(input.c_str(), "", flags));
    EXPECT_EQ(EngineGetLastError(), 87u);
    EXPECT_FALSE(DecodeFileByType(nullptr, input.c_str(), flags));
    EXPECT_EQ(EngineGetLastError(), 87u);
  }
  // Quoted-printable and uuencode let the open fail instead.
  EngineSetLastError(0);
  EXPECT_FALSE(
      EncodeFileByType(folder_.Path("missing").c_str(), folder_.Path("o").c_str(), kQuoted));
  EXPECT_EQ(EngineGetLastError(), 2u);
}

TEST_F(FileEncoding, QuotedPrintableFileIsOneLine) {
  Bytes data(300, 'a');
  data[100] = '\r';
  data[101] = '\n';
  const std::string text = Encoded(data, kQuoted);
  EXPECT_EQ(text.find('\n'), std::string::npos);
  EXPECT_NE(text.find("=0D=0A"), std::string::npos);
  EXPECT_EQ(text.size(), 298u + 6u);
}

TEST_F(FileEncoding, Base85FileMatchesTheDataEncoding) {
  const Bytes data = RandomBytes(3001, 11);
  EXPECT_EQ(Encoded(data, kBase85), Encode(data, dataEncodeBase85, 8000));
}

TEST_F(FileEncoding, Base85GroupSplitAcrossReadsDecodesAsOneText) {
  // 1021 characters before a group: its five digits straddle the first read.
  std::string text(1021, ' ');
  text += Encode(ToBytes("Split across reads!!"), dataEncodeBase85);
  EXPECT_EQ(ToString(Decoded(text, kBase85)), "Split across reads!!");
  std::string zeros(1023, ' ');
  zeros += "z9jqo^";
  EXPECT_EQ(Decoded(zeros, kBase85), (Bytes{0, 0, 0, 0, 'M', 'a', 'n', ' '}));
}

TEST_F(FileEncoding, Base58OfOneByteDoesNotFitTwiceItsSize) {
  const std::string input = folder_.Write("one", {0xFF});
  EXPECT_FALSE(EncodeFileByType(input.c_str(), folder_.Path("o").c_str(), kBase58));
  EXPECT_EQ(EngineGetLastError(), 122u);
  EXPECT_FALSE(TempFolder::Exists(folder_.Path("o")));
}

// ---- uuencode ----

TEST_F(FileEncoding, UuencodedEmptyFile) {
  EXPECT_EQ(Encoded({}, kUucode, "empty.dat"), "begin 644 empty.dat\r\n`\r\nend\r\n");
}

TEST_F(FileEncoding, FortyFiveBytesMakeOneFullLine) {
  const std::string text = Encoded(RandomBytes(45, 12), kUucode, "f");
  const std::string line = text.substr(text.find("\r\n") + 2, 61);
  EXPECT_EQ(line[0], 'M');
  EXPECT_EQ(text.substr(text.find("\r\n") + 2 + 61, 2), "\r\n");
}

TEST_F(FileEncoding, ZeroIsWrittenAsGraveAccent) {
  const std::string text = Encoded(Bytes(3, 0), kUucode, "z");
  EXPECT_EQ(text, "begin 644 z\r\n#````\r\n`\r\nend\r\n");
  // Spaces decode as zeros too.
  EXPECT_EQ(Decoded("begin 644 z\r\n#    \r\n`\r\nend\r\n", kUucode), Bytes(3, 0));
}

TEST_F(FileEncoding, HeaderNamesTheBaseName) {
#ifdef _WIN32
  // The full path has backslashes; the same with forward slashes.
  const std::string input = folder_.Write("report.bin", ToBytes("x"));
  std::string forward = input;
  for (char& c : forward) {
    if (c == '\\') c = '/';
  }
#else
  // A backslash is an ordinary character here, but the header still cuts
  // at it.
  const std::string input = folder_.Write("dir\\report.bin", ToBytes("x"));
  const std::string forward = folder_.Write("report.bin", ToBytes("x"));
#endif
  for (const std::string& name : {input, forward}) {
    ASSERT_TRUE(UuencodeFile(name.c_str(), folder_.Path("o").c_str()));
    EXPECT_EQ(ToString(TempFolder::Read(folder_.Path("o"))).substr(0, 21),
              "begin 644 report.bin\r");
  }
}

TEST_F(FileEncoding, UudecodeNeedsABeginLine) {
  bool ok = true;
  const std::string output = folder_.Path("decoded.bin");
  Decoded("no block here\r\n", kUucode, &ok);
  EXPECT_FALSE(ok);
  EXPECT_FALSE(TempFolder::Exists(output));
}

TEST_F(FileEncoding, UudecodeWithoutEndFailsAfterWritingTheData) {
  bool ok = true;
  EXPECT_EQ(ToString(Decoded("begin 644 f\r\n#86)C\r\n`\r\nnot end\r\n", kUucode, &ok)), "abc");
  EXPECT_FALSE(ok);
}

TEST_F(FileEncoding, UudecodeSkipsTextAndAnyModeDigits) {
  bool ok = false;
  EXPECT_EQ(ToString(Decoded("Hello\r\nbegin 123456 f\r\n#86)C\r\n`\r\nend\r\n", kUucode, &ok)),
            "abc");
  EXPECT_TRUE(ok);
}

// Runs in the test's folder as the current directory.
class InFolder {
 public:
  explicit InFolder(const std::string& folder) : saved_(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~InFolder() { std::filesystem::current_path(saved_); }

 private:
  std::filesystem::path saved_;
};

TEST_F(FileEncoding, UudecodeWithoutOutputNameUsesTheStoredName) {
  std::filesystem::create_directory(folder_.Path("sub"));
  const std::string input =
      folder_.Write("in.uu", ToBytes("begin 644 sub/stored.txt\r\n#86)C\r\n`\r\nend\r\n"));
  const InFolder here(folder_.Folder());
  ASSERT_TRUE(UudecodeFile(input.c_str(), ""));
  EXPECT_EQ(ToString(TempFolder::Read(folder_.Path("sub/stored.txt"))), "abc");
}

TEST_F(FileEncoding, UudecodeRefusesStoredNamesOutsideTheCurrentFolder) {
  std::filesystem::create_directory(folder_.Path("inner"));
  const InFolder here(folder_.Path("inner"));
  for (const std::string name :
       {folder_.Path("abs.txt"), std::string("../up.txt"), std::string("a/../../up2.txt"),
        std::string("..\\up3.txt"), std::string("C:\\x.txt"), std::string("\\root.txt"),
        std::string("..")}) {
    const std::string input =
        folder_.Write("in.uu", ToBytes("begin 644 " + name + "\r\n#86)C\r\n`\r\nend\r\n"));
    EngineSetLastError(0);
    EXPECT_FALSE(UudecodeFile(input.c_str(), "")) << name;
    EXPECT_EQ(EngineGetLastError(), 123u) << name;
    EXPECT_FALSE(UudecodeFile(input.c_str(), nullptr)) << name;
  }
  // Nothing was written anywhere: the folder holds the input and "inner".
  EXPECT_EQ(folder_.Count(), 2u);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path("inner")));
  // A name that merely contains dots is fine.
  const std::string input =
      folder_.Write("in.uu", ToBytes("begin 644 a..b.txt\r\n#86)C\r\n`\r\nend\r\n"));
  EXPECT_TRUE(UudecodeFile(input.c_str(), ""));
  EXPECT_EQ(ToString(TempFolder::Read(folder_.Path("inner/a..b.txt"))), "abc");
}

TEST_F(FileEncoding, UudecodeEmptyLineBeforeALongRunReadsNothingPastTheLine) {
  // A long line first leaves the line buffer full; then an empty data line
  // followed by 1024 bytes without a line end.
  std::string text = "begin 644 x\n" + std::string(1000, 'M') + "\n\n" + std::string(1024, 'A');
  bool ok = true;
  Decoded(text, kUucode, &ok);
  EXPECT_FALSE(ok);
}

TEST_F(FileEncoding, UudecodeLineHoldingANulMovesOnByItsTextLength) {
  // "#86)C" NUL "XYZ" CR LF: the offset moves on by the 5 characters before
  // the NUL, the line end and the LF, so the next line read is "YZ", whose
  // length character 'Y' asks for 57 bytes from the one character 'Z'.
  const char raw[] = "begin 644 f\r\n#86)C\0XYZ\r\n`\r\nend\r\n";
  const std::string text(raw, sizeof raw - 1);
  bool ok = true;
  Bytes expected = ToBytes("abc");
  expected.push_back(('Z' - 32) << 2);
  expected.resize(expected.size() + 56, 0);
  EXPECT_EQ(Decoded(text, kUucode, &ok), expected);
  EXPECT_TRUE(ok);
}

TEST_F(FileEncoding, FilesLargerThanTheReadBlockKeepTheirPieces) {
  // 3 MiB and a bit: each codec still sees the 512-byte (Base32) and
  // 16-byte (quoted-printable) pieces of plain reads across every block.
  const Bytes data = RandomBytes(3 * 1048576 + 7, 12);
  Base32State state{};
  std::string base32;
  char text[1024];
  for (size_t at = 0; at < data.size(); at += 512) {
    const auto n = static_cast<int32_t>(std::min<size_t>(512, data.size() - at));
    base32.append(text, Base32EncodeChunk(data.data() + at, n, text, sizeof text, &state, 1));
  }
  base32.append(text, Base32EncodeFinish(&state, text, sizeof text, 1));
  EXPECT_EQ(Encoded(data, kBase32), base32);
  std::string quoted;
  for (size_t at = 0; at < data.size(); at += 16) {
    const auto n = static_cast<int32_t>(std::min<size_t>(16, data.size() - at));
    quoted.append(text, QpEncode(data.data() + at, n, text, 48, 1));
  }
  EXPECT_EQ(Encoded(data, kQuoted), quoted);
  for (uint32_t flags : {kQuoted, kUucode, kYencode, kBase32, kBase85}) {
    bool ok = false;
    EXPECT_EQ(Decoded(Encoded(data, flags), flags, &ok), data) << flags;
    EXPECT_TRUE(ok) << flags;
  }
}

// ---- yEnc ----

TEST_F(FileEncoding, YencEmptyFile) {
  EXPECT_EQ(Encoded({}, kYencode, "e"),
            "=ybegin line=128 size=0 name=e\r\n=yend size=0 crc32=00000000 \r\n");
}

TEST_F(FileEncoding, YencEscapes) {
  const std::string text = Encoded({0xD6, 0x04, 0xDF, 0x00}, kYencode, "x");
  const size_t start = text.find("\r\n") + 2;
  EXPECT_EQ(text.substr(start, 8), "=@=n=I*\r");
}

TEST_F(FileEncoding, YencLinesOf128And129) {
  // 0xD6 always escapes: 64 pairs make exactly 128 characters.
  const std::string escaped = Encoded(Bytes(200, 0xD6), kYencode, "x");
  const size_t start = escaped.find("\r\n") + 2;
  EXPECT_EQ(escaped.find("\r\n", start) - start, 128u);
  // One plain byte first: the escape pair then starts at 128 and ends at 129.
  Bytes mixed(200, 0xD6);
  mixed[0] = 'a';
  const std::string text = Encoded(mixed, kYencode, "x");
  const size_t first = text.find("\r\n") + 2;
  EXPECT_EQ(text.find("\r\n", first) - first, 129u);
}

// The encoding a byte at a time, the last line closed where it stands.
std::string PlainYencBody(const Bytes& data) {
  size_t lineUsed = 0;
  const std::string body = reference::YencEncodeBody(data.data(), data.size(), &lineUsed);
  return lineUsed > 0 ? body + "\r\n" : body;
}

TEST_F(FileEncoding, YencBodyIsThePlainEncodingAtManySizes) {
  for (size_t size : {1u, 2u, 127u, 128u, 129u, 4095u, 4096u, 4097u, 10000u, 70000u}) {
    // Many escapes, so that pairs land on every column.
    Bytes data = RandomBytes(size, static_cast<uint32_t>(size));
    for (size_t i = 0; i < size; i += 3)
      data[i] = static_cast<uint8_t>(256 - 42 + "\0\t\n\r.="[i % 6]);
    const std::string text = Encoded(data, kYencode, "x");
    const size_t start = text.find("\r\n") + 2;
    const size_t end = text.rfind("=yend ");
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(text.substr(start, end - start), PlainYencBody(data)) << size;
  }
}

TEST_F(FileEncoding, YencNameSpacesBecomeUnderscores) {
  EXPECT_EQ(Encoded(ToBytes("x"), kYencode, "my file.txt").substr(0, 42),
            "=ybegin line=128 size=1 name=my_file.txt\r\n");
}

TEST_F(FileEncoding, YencTrailerCarriesTheCrc) {
  const std::string text = Encoded(ToBytes("123456789"), kYencode, "c");
  EXPECT_NE(text.find("=yend size=9 crc32=cbf43926 \r\n"), std::string::npos);
}

TEST_F(FileEncoding, YencWrongCrcFailsAndRemovesTheOutput) {
  std::string text = Encoded(ToBytes("123456789"), kYencode, "c");
  text.replace(text.find("cbf43926"), 8, "cbf43927");
  bool ok = true;
  Decoded(text, kYencode, &ok);
  EXPECT_FALSE(ok);
  EXPECT_FALSE(TempFolder::Exists(folder_.Path("decoded.bin")));
}

TEST_F(FileEncoding, YencWithoutCrcIsCheckedBySize) {
  bool ok = false;
  EXPECT_EQ(
      ToString(Decoded("=ybegin line=128 size=3 name=x\r\nKLM\r\n=yend size=3\r\n", kYencode, &ok)),
      "!\"#");
  EXPECT_TRUE(ok);
  Decoded("=ybegin line=128 size=4 name=x\r\nKLM\r\n=yend\r\n", kYencode, &ok);
  EXPECT_FALSE(ok);
}

TEST_F(FileEncoding, YencMultiPart) {
  const std::string parts =
      "=ybegin part=1 line=128 size=6 name=x\r\n=ypart begin=1 end=3\r\nKLM\r\n"
      "=yend size=3 part=1\r\n"
      "=ybegin part=2 line=128 size=6 name=x\r\n=ypart begin=4 end=6\r\nNOP\r\n"
      "=yend size=3 part=2\r\n";
  bool ok = false;
  EXPECT_EQ(ToString(Decoded(parts, kYencode, &ok)), "!\"#$%&");
  EXPECT_TRUE(ok);
  std::string wrongNumber = parts;
  wrongNumber.replace(wrongNumber.find("part=2 line"), 6, "part=3");
  Decoded(wrongNumber, kYencode, &ok);
  EXPECT_FALSE(ok);
  std::string overshoot = parts;
  overshoot.replace(overshoot.find("size=6"), 6, "size=5");
  Decoded(overshoot, kYencode, &ok);
  EXPECT_FALSE(ok);
}

TEST(ParseHex32, ReadsLeadingDigits) {
  EXPECT_EQ(ParseHex32("cbf43926 "), 0xCBF43926u);
  EXPECT_EQ(ParseHex32("CBF4xyz"), 0xCBF4u);
  EXPECT_EQ(ParseHex32(nullptr), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace fe::test
