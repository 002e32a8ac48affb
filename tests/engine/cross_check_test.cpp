// Cross-checks against independent implementations on the machine: Python's
// standard library (and Debian's python3-base58) and coreutils' basenc.
// They run natively only; where a tool is missing the test says so and is
// skipped.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "temp_folder.h"
#include "test_support.h"
#include "utf8_samples.h"

#ifdef _WIN32

TEST(CrossCheck, NeedsTheLinuxTools) {
  GTEST_SKIP() << "cross-check cannot run here: the independent tools are Linux programs";
}

#else

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace fe::test {
namespace {

constexpr const char* kPython = "/usr/bin/python3";

// Runs `command` with the bytes of `input` in a file named by {in}; returns
// what it wrote to standard output, or fails the test.
bool RunTool(const std::string& command, const Bytes& input, Bytes& output) {
  char path[] = "/tmp/fe_cross_check_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return false;
  close(fd);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(input.data()),
             static_cast<std::streamsize>(input.size()));
  std::string line = command;
  for (size_t at; (at = line.find("{in}")) != std::string::npos;)
    line.replace(at, 4, path);
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return false;
  output.clear();
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    output.insert(output.end(), buffer, buffer + n);
  }
  const int status = pclose(pipe);
  std::remove(path);
  return status == 0;
}

bool HavePythonModule(const char* module) {
  Bytes ignored;
  return RunTool(std::string(kPython) + " -c 'import " + module + "' 2>/dev/null", {}, ignored);
}

Bytes Python(const std::string& expression, const Bytes& input) {
  // `data` holds the input file's bytes; the expression's bytes are printed.
  const std::string script =
      "import sys,base64,binascii,zlib,urllib.parse\n"
      "data=open(sys.argv[1],'rb').read()\n"
      "sys.stdout.buffer.write(" +
      expression + ")\n";
  Bytes output;
  EXPECT_TRUE(RunTool(std::string(kPython) + " -c \"" + script + "\" {in}", input, output))
      << expression;
  return output;
}

std::vector<Bytes> Samples() {
  std::vector<Bytes> samples;
  for (size_t size : {1u, 2u, 3u, 4u, 5u, 54u, 55u, 100u, 1000u, 4096u}) {
    samples.push_back(RandomBytes(size, static_cast<uint32_t>(size)));
  }
  samples.push_back(Bytes(64, 0));
  return samples;
}

TEST(CrossCheck, Base64AgainstPython) {
  for (const Bytes& data : Samples()) {
    EXPECT_EQ(Encode(data, dataEncodeBase64), ToString(Python("base64.b64encode(data)", data)));
    const std::string wrapped =
        ToString(Python("b''.join(base64.b64encode(data)[i:i+72]+b'\\r\\n' for i in "
                        "range(0,len(base64.b64encode(data)),72))",
                        data));
    EXPECT_EQ(Encode(data, dataEncodeBase64 | dataEncodeWrapLines), wrapped);
    EXPECT_EQ(Decode(ToString(Python("base64.encodebytes(data)", data)), dataDecodeBase64), data);
  }
}

TEST(CrossCheck, Base32AgainstPython) {
  for (const Bytes& data : Samples()) {
    std::string ours = Encode(data, dataEncodeBase32);
    ours.erase(ours.find_last_not_of('=') + 1);
    EXPECT_EQ(ours, ToString(Python("base64.b32encode(data).rstrip(b'=')", data)));
    EXPECT_EQ(Decode(ToString(Python("base64.b32encode(data)", data)), dataDecodeBase32), data);
    EXPECT_EQ(Decode(ToString(Python("base64.b32encode(data).lower()", data)), dataDecodeBase32),
              data);
  }
}

TEST(CrossCheck, QuotedPrintableAgainstPython) {
  for (const Bytes& data : Samples()) {
    for (uint32_t wrap : {0u, static_cast<uint32_t>(dataEncodeWrapLines)}) {
      const std::string ours = Encode(data, dataEncodeQuoted | wrap);
      EXPECT_EQ(Python("binascii.a2b_qp(data)", ToBytes(ours)), data);
      EXPECT_EQ(Python("__import__('quopri').decodestring(data)", ToBytes(ours)), data);
    }
    const Bytes theirs = Python("binascii.b2a_qp(data, quotetabs=True)", data);
    if (std::find(theirs.begin(), theirs.end(), '\n') == theirs.end()) {
      EXPECT_EQ(Decode(ToString(theirs), dataDecodeQuoted), data);
    }
  }
}

TEST(CrossCheck, UrlAgainstPython) {
  for (const Bytes& data : Samples()) {
    const std::string ours = Encode(data, dataEncodeURL);
    EXPECT_EQ(Python("urllib.parse.unquote_to_bytes(data)", ToBytes(ours)), data);
    EXPECT_EQ(ToString(Python("urllib.parse.quote_from_bytes(data, safe='~').replace('-','%2D')"
                              ".replace('.','%2E').replace('_','%5F').encode()",
                              data)),
              ours);
    EXPECT_EQ(Decode(ToString(Python("urllib.parse.quote_from_bytes(data).encode()", data)),
                     dataDecodeURL),
              data);
  }
}

TEST(CrossCheck, Base58AgainstPythonBase58) {
  if (!HavePythonModule("base58")) GTEST_SKIP() << "cross-check cannot run: python3-base58 missing";
  for (const Bytes& data : Samples()) {
    const Bytes theirs = Python("__import__('base58').b58encode(data)", data);
    EXPECT_EQ(Encode(data, dataEncodeBase58), ToString(theirs));
    EXPECT_EQ(Decode(ToString(theirs), dataDecodeBase58), data);
  }
}

TEST(CrossCheck, Base85AgainstPythonAscii85) {
  for (const Bytes& data : Samples()) {
    const Bytes theirs = Python("base64.a85encode(data)", data);
    EXPECT_EQ(Encode(data, dataEncodeBase85), ToString(theirs));
    EXPECT_EQ(
        Decode(ToString(Python("base64.a85encode(data, wrapcol=20)", data)), dataDecodeBase85),
        data);
    EXPECT_EQ(Python("base64.a85decode(data)", ToBytes(Encode(data, dataEncodeBase85))), data);
  }
}

TEST(CrossCheck, BasencAgreesOnBase64Base32AndZ85) {
  Bytes probe;
  if (!RunTool("basenc --z85 </dev/null", {}, probe)) {
    GTEST_SKIP() << "cross-check cannot run: coreutils basenc missing";
  }
  for (const Bytes& data : Samples()) {
    Bytes theirs;
    ASSERT_TRUE(RunTool("basenc --base64 -w0 {in}", data, theirs));
    EXPECT_EQ(Encode(data, dataEncodeBase64), ToString(theirs));
    ASSERT_TRUE(RunTool("basenc --base32 -w0 {in}", data, theirs));
    EXPECT_EQ(Decode(ToString(theirs), dataDecodeBase32), data);
    if (data.size() % 4 == 0) {
      ASSERT_TRUE(RunTool("basenc --z85 -w0 {in}", data, theirs));
      EXPECT_EQ(Encode(data, dataEncodeZ85), ToString(theirs));
      EXPECT_EQ(Decode(ToString(theirs), dataDecodeZ85), data);
    }
  }
}

TEST(CrossCheck, ZlibAgainstPython) {
  for (const Bytes& data : Samples()) {
    uint32_t length = static_cast<uint32_t>(data.size() * 2 + 64);
    Bytes ours(length);
    ASSERT_TRUE(
        DeflateBuffer(data.data(), static_cast<int32_t>(data.size()), ours.data(), &length));
    ours.resize(length);
    EXPECT_EQ(Python("zlib.decompress(data)", ours), data);
    const Bytes theirs = Python("zlib.compress(data, 9)", data);
    Bytes back(data.size());
    uint32_t backLength = static_cast<uint32_t>(back.size());
    ASSERT_TRUE(InflateBuffer(theirs.data(), static_cast<int32_t>(theirs.size()), back.data(),
                              &backLength));
    EXPECT_EQ(back, data);
  }
}

TEST(CrossCheck, Utf7AndUtf8AgainstPython) {
  const std::u16string text =
      u"Hi Mom -\u263a-! A\u2262\u0391. \u65e5\u672c\u8a9e +1 ~x \U0001F600";
  const Bytes utf16(reinterpret_cast<const uint8_t*>(text.data()),
                    reinterpret_cast<const uint8_t*>(text.data() + text.size()));
  for (auto [encoding, codec] : {std::pair{uint32_t{dataEncodeUTF7}, "utf-7"},
                                 std::pair{uint32_t{dataEncodeUTF8}, "utf-8"}}) {
    std::vector<char> ours(512);
    const int32_t n =
        EncodeBuffer(text.data(), static_cast<int32_t>(text.size()), ours.data(), 512, encoding);
    ASSERT_GT(n, 0);
    const Bytes decodedByPython =
        Python(std::string("data.decode('") + codec + "').encode('utf-16-le')",
               Bytes(ours.begin(), ours.begin() + n));
    EXPECT_EQ(decodedByPython, utf16) << codec;
    const Bytes theirs =
        Python(std::string("data.decode('utf-16-le').encode('") + codec + "')", utf16);
    std::u16string back(256, u'\0');
    const int32_t m = DecodeBuffer(ToString(theirs).c_str(), back.data(), 256, encoding);
    ASSERT_EQ(m, static_cast<int32_t>(text.size()) + 1) << codec;
    back.resize(text.size());
    EXPECT_EQ(back, text) << codec;
  }
}

TEST(CrossCheck, EncryptionAgainstOpensslCommandLine) {
  Bytes probe;
  if (!RunTool("openssl version >/dev/null", {}, probe)) {
    GTEST_SKIP() << "cross-check cannot run: openssl command missing";
  }
  for (size_t size : {0u, 1u, 4096u, 10000u, 12345u}) {
    const Bytes plain = RandomBytes(size, static_cast<uint32_t>(size) + 7);
    Bytes ours(size + 16);
    uint32_t length = static_cast<uint32_t>(ours.size());
    ASSERT_TRUE(EncryptBuffer("p\xc3\xa4ss", size ? plain.data() : ours.data(),
                              static_cast<uint32_t>(size), ours.data(), &length));
    ours.resize(length);
    // The key is SHA-256 of the identifier text and the password's bytes.
    const Bytes key = Python(
        "__import__('hashlib').sha256(b'{fd91a26c-3e37-4b0c-bbc2-cb031bf7130a}' + "
        "'p\\u00e4ss'.encode()).hexdigest().encode()",
        {});
    Bytes theirs;
    ASSERT_TRUE(RunTool("openssl enc -aes-256-cbc -K " + ToString(key) + " -iv " +
                            std::string(32, '0') + " -in {in}",
                        plain, theirs));
    // An empty buffer encrypts to nothing here; OpenSSL pads it to a block.
    EXPECT_EQ(ours, size ? theirs : Bytes{}) << size;
  }
}

TEST(CrossCheck, EncryptedFilesAgainstOpensslCommandLine) {
  Bytes probe;
  if (!RunTool("openssl version >/dev/null", {}, probe)) {
    GTEST_SKIP() << "cross-check cannot run: openssl command missing";
  }
  TempFolder folder;
  const Bytes key = Python(
      "__import__('hashlib').sha256(b'{fd91a26c-3e37-4b0c-bbc2-cb031bf7130a}' + "
      "b'file key').hexdigest().encode()",
      {});
  const std::string cipher =
      "openssl enc -aes-256-cbc -K " + ToString(key) + " -iv " + std::string(32, '0') + " -in {in}";
  for (size_t size : {1u, 4096u, 8192u, 100000u, 1000003u}) {
    const Bytes plain = RandomBytes(size, static_cast<uint32_t>(size) + 3);
    const std::string in = folder.Write("plain", plain);
    const std::string out = folder.Path("cipher");
    ASSERT_TRUE(EncryptFileData("file key", in.c_str(), out.c_str()));
    Bytes theirs;
    ASSERT_TRUE(RunTool(cipher, plain, theirs));
    EXPECT_EQ(TempFolder::Read(out), theirs) << size;
    // And what OpenSSL encrypted decrypts here.
    const std::string back = folder.Path("back");
    ASSERT_TRUE(DecryptFileData("file key", folder.Write("theirs", theirs).c_str(), back.c_str()));
    EXPECT_EQ(TempFolder::Read(back), plain) << size;
    Bytes decrypted;
    ASSERT_TRUE(RunTool(cipher + " -d", TempFolder::Read(out), decrypted));
    EXPECT_EQ(decrypted, plain) << size;
  }
}

TEST(CrossCheck, DigestsOfEveryLengthAgainstPythonHashlib) {
  // One file of 1000 bytes; Python prints the three digests of each prefix.
  const Bytes data = RandomBytes(1000, 21);
  const Bytes expected = Python(
      "'\\n'.join(' '.join(__import__('hashlib').new(h, data[:n]).hexdigest().upper() "
      "for h in ('md5', 'sha1', 'sha256')) for n in range(1001)).encode()",
      data);
  TempFolder folder;
  std::string ours;
  for (size_t n = 0; n <= 1000; ++n) {
    const std::string path = folder.Write("prefix", Bytes(data.begin(), data.begin() + n));
    char md5[65], sha1[65], sha256[65];
    ASSERT_EQ(GetFileDigestMD5(path.c_str(), md5), 32);
    ASSERT_EQ(GetFileDigestSHA1(path.c_str(), sha1), 40);
    ASSERT_EQ(GetFileDigestSHA256(path.c_str(), sha256), 64);
    ours += std::string(n ? "\n" : "") + md5 + " " + sha1 + " " + sha256;
  }
  EXPECT_EQ(ours, ToString(expected));
}

TEST(CrossCheck, FileDigestsAgainstCoreutils) {
  TempFolder folder;
  for (size_t size : {0u, 55u, 64u, 8191u, 8192u, 8193u, 1000000u, 5u << 20}) {
    const std::string path = folder.Write("file", RandomBytes(size, static_cast<uint32_t>(size)));
    const struct {
      const char* tool;
      int32_t (*ours)(const char*, char*);
    } digests[] = {{"md5sum", GetFileDigestMD5},
                   {"sha1sum", GetFileDigestSHA1},
                   {"sha256sum", GetFileDigestSHA256}};
    for (const auto& digest : digests) {
      Bytes theirs;
      ASSERT_TRUE(RunTool(std::string(digest.tool) + " " + path + " | cut -d' ' -f1", {}, theirs));
      std::string text = ToString(theirs);
      text.erase(text.find_last_not_of("\n") + 1);
      for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      char ours[65];
      ASSERT_GT(digest.ours(path.c_str(), ours), 0);
      EXPECT_EQ(std::string(ours), text) << digest.tool << " " << size;
    }
  }
}

// Each sequence's verdict from Python's strict decoder after the same
// byte-order-mark rule, given one line of hexadecimal per sequence: with
// surrogateescape every invalid byte shows as a lone surrogate, which
// well-formed UTF-8 can never produce.
void ExpectPythonVerdicts(const std::vector<Bytes>& sequences) {
  std::string lines;
  for (const Bytes& bytes : sequences)
    lines += Hex(bytes.data(), bytes.size()) + '\n';
  const Bytes verdicts = Python(
      "bytes(48 + all(not '\\udc80' <= c <= '\\udcff' for c in (lambda b: b[3:] "
      "if b[:3] == b'\\xef\\xbb\\xbf' else b)(bytes.fromhex(line)).decode('utf-8', "
      "'surrogateescape')) for line in data.decode().split())",
      Bytes(lines.begin(), lines.end()));
  ASSERT_EQ(verdicts.size(), sequences.size());
  for (size_t i = 0; i < sequences.size(); ++i) {
    const bool ours =
        Utf8Validate(sequences[i].data(), static_cast<int32_t>(sequences[i].size())) != 0;
    ASSERT_EQ(ours, verdicts[i] == '1') << i;
  }
}

TEST(CrossCheck, Utf8ValidationAgainstPythonStrictDecoding) {
  // Short sequences of random bytes with a bias to UTF-8 lead and
  // continuation bytes.
  std::mt19937 random(11);
  std::vector<Bytes> sequences;
  for (int i = 0; i < 1000000; ++i) {
    Bytes bytes(1 + random() % 12);
    for (auto& b : bytes) {
      const uint32_t r = random();
      b = static_cast<uint8_t>(r % 4 == 0 ? 0x20 + r % 0x60 : 0x80 + (r >> 8) % 0x80);
    }
    sequences.push_back(bytes);
  }
  ExpectPythonVerdicts(sequences);
}

// Long text, where the vector kernel runs: well-formed or damaged in a
// few places, without zero bytes (the validator stops at those).
TEST(CrossCheck, LongUtf8TextAgainstPythonStrictDecoding) {
  std::mt19937 random(13);
  std::vector<Bytes> sequences;
  for (int i = 0; i < 30000; ++i) {
    Bytes text = MixedUtf8Text(64 + random() % 500, random);
    for (int d = 0; d < i % 4; ++d)
      DamageUtf8(text, random);
    sequences.push_back(text);
  }
  ExpectPythonVerdicts(sequences);
}

// Compatibility decomposition through the platform against Python's
// unicodedata for every code point of the BMP that Python's tables assign
// (the two may follow different Unicode versions for newer characters).
TEST(CrossCheck, DecompositionAgainstPythonForTheWholeBmp) {
  const Bytes reference = Python(
      "''.join('%x:%s\\n' % (c, __import__('unicodedata').normalize('NFKD', "
      "chr(c)).encode('utf-16-le').hex()) "
      "for c in range(1, 0x10000) if not 0xD800 <= c <= 0xDFFF and "
      "__import__('unicodedata').category(chr(c)) != 'Cn').encode()",
      {});
  std::istringstream lines(ToString(reference));
  int checked = 0;
  for (std::string line; std::getline(lines, line);) {
    const size_t colon = line.find(':');
    const auto c = static_cast<char16_t>(std::stoul(line.substr(0, colon), nullptr, 16));
    char16_t ours[32];
    const int length = platform::NormalizeKd(&c, 1, ours, 32);
    ASSERT_GT(length, 0) << std::hex << static_cast<int>(c);
    ASSERT_EQ(Hex(reinterpret_cast<const uint8_t*>(ours), static_cast<size_t>(length) * 2),
              line.substr(colon + 1))
        << std::hex << static_cast<int>(c);
    ++checked;
  }
  EXPECT_GT(checked, 50000);
}

// Text files through code pages that iconv knows too, both ways.
TEST(CrossCheck, TextFileConversionAgainstIconv) {
  const struct {
    uint32_t codePage;
    const char* iconvName;
    const char* text;
  } cases[] = {
      {1252, "CP1252",
       "Gr\xC3\xBC\xC3\x9F"
       "e, na\xC3\xAFve caf\xC3\xA9 \xE2\x80\x94 10 \xE2\x82\xAC \xC2\xAB\xC2\xBD\xC2\xBB\r\n"},
      {1251, "CP1251",
       "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, \xD0\xBC\xD0\xB8\xD1\x80!\n"},
      {437, "CP437", "\xE2\x94\x8C\xE2\x94\x80\xE2\x94\x90 \xC3\xA4 \xC2\xBD\n"},
      {850, "CP850", "\xC3\x85ngstr\xC3\xB6m \xC3\xB8\n"},
      {28591, "ISO-8859-1", "caf\xC3\xA9 \xC2\xA9 \xC3\xBF\n"},
      {932, "CP932",
       "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x86\xE3\x82\xAD\xE3\x82\xB9\xE3"
       "\x83\x88\n"},
      {936, "CP936", "\xE4\xB8\xAD\xE6\x96\x87\xE6\x96\x87\xE6\x9C\xAC\n"},
      {1200, "UTF-16LE", "\xF0\x9F\x98\x80 plane one and caf\xC3\xA9\n"},
      {1201, "UTF-16BE", "\xF0\x9F\x98\x80 plane one and caf\xC3\xA9\n"},
  };
  TempFolder folder;
  for (const auto& c : cases) {
    // Long enough that chunks end inside double-byte characters.
    std::string text;
    while (text.size() < 20000)
      text += c.text;
    const std::string utf8 = folder.Write("utf8.txt", ToBytes(text));
    const std::string converted = folder.Path("converted.txt");
    const uint32_t noMark = c.codePage == 1200 || c.codePage == 1201 ? fileConvertNoBom : 0;
    ASSERT_TRUE(ConvertTextFile(utf8.c_str(), 65001, converted.c_str(), c.codePage, noMark))
        << c.iconvName << " " << EngineGetLastError();
    Bytes theirs;
    ASSERT_TRUE(
        RunTool(std::string("iconv -f UTF-8 -t ") + c.iconvName + " {in}", ToBytes(text), theirs));
    EXPECT_EQ(TempFolder::Read(converted), theirs) << c.iconvName;
    const std::string back = folder.Path("back.txt");
    ASSERT_TRUE(
        ConvertTextFile(converted.c_str(), c.codePage, back.c_str(), 65001, fileConvertStrict))
        << c.iconvName << " " << EngineGetLastError();
    ASSERT_TRUE(RunTool(std::string("iconv -f ") + c.iconvName + " -t UTF-8 {in}", theirs, theirs));
    EXPECT_EQ(TempFolder::Read(back), theirs) << c.iconvName;
  }
}

TEST(CrossCheck, CompressedFilesAgainstPythonAndTheCommandLineTools) {
  TempFolder folder;
  Bytes data = RandomBytes(300000, 77);
  for (size_t i = 0; i < data.size(); ++i) {
    if (i % 5) data[i] = static_cast<uint8_t>("cross check "[i % 12]);
  }
  const std::string source = folder.Write("data.bin", data);
  const struct {
    uint32_t type;
    const char* python;  // decompresses `data`
    const char* tool;    // decompresses {in} to standard output
  } methods[] = {
      {1, "zlib.decompress(data)", nullptr},
      {2, "__import__('bz2').decompress(data)", "bzip2 -dc {in}"},
      {3, "__import__('lzma').decompress(data, format=__import__('lzma').FORMAT_ALONE)",
       "xz --format=lzma -dc {in}"},
  };
  for (const auto& method : methods) {
    const std::string packed = folder.Path("packed" + std::to_string(method.type));
    ASSERT_TRUE(CompressFileByType(source.c_str(), packed.c_str(), method.type, 0));
    EXPECT_EQ(Python(method.python, TempFolder::Read(packed)), data) << method.type;
    if (method.tool != nullptr) {
      Bytes theirs;
      EXPECT_TRUE(RunTool(method.tool, TempFolder::Read(packed), theirs)) << method.tool;
      EXPECT_EQ(theirs, data) << method.tool;
    }
  }
  // And what they write, we read, with the method detected.
  const std::pair<const char*, const char*> writers[] = {
      {"zlib.compress(data, 9)", nullptr},
      {"__import__('bz2').compress(data)", "bzip2 -c {in}"},
      {"__import__('lzma').compress(data, format=__import__('lzma').FORMAT_ALONE)",
       "xz --format=lzma -c {in}"},
  };
  for (const auto& [python, tool] : writers) {
    const std::string theirs = folder.Write("theirs", Python(python, data));
    const std::string back = folder.Path("back");
    EXPECT_TRUE(ExpandFileByType(theirs.c_str(), back.c_str(), 0)) << python;
    EXPECT_EQ(TempFolder::Read(back), data) << python;
    if (tool != nullptr) {
      Bytes packed;
      ASSERT_TRUE(RunTool(tool, data, packed));
      const std::string file = folder.Write("tool", packed);
      EXPECT_TRUE(ExpandFileByType(file.c_str(), back.c_str(), 0)) << tool;
      EXPECT_EQ(TempFolder::Read(back), data) << tool;
    }
  }
}

TEST(CrossCheck, UuencodeAgainstSharutils) {
  Bytes probe;
  if (!RunTool("uudecode --version >/dev/null", {}, probe)) {
    GTEST_SKIP() << "cross-check cannot run: sharutils missing";
  }
  TempFolder folder;
  for (size_t size : {0u, 1u, 44u, 45u, 46u, 1000u, 100000u}) {
    const Bytes data = RandomBytes(size, static_cast<uint32_t>(size) + 3);
    const std::string input = folder.Write("data.bin", data);
    const std::string ours = folder.Path("ours.uu");
    ASSERT_TRUE(UuencodeFile(input.c_str(), ours.c_str()));
    Bytes theirs;
    ASSERT_TRUE(RunTool("uudecode -o /dev/stdout {in}", TempFolder::Read(ours), theirs));
    EXPECT_EQ(theirs, data) << size;
    Bytes encoded;
    ASSERT_TRUE(RunTool("uuencode data.bin < {in}", data, encoded));
    const std::string file = folder.Write("theirs.uu", encoded);
    const std::string back = folder.Path("back.bin");
    EXPECT_TRUE(UudecodeFile(file.c_str(), back.c_str())) << size;
    EXPECT_EQ(TempFolder::Read(back), data) << size;
  }
}

TEST(CrossCheck, YencAgainstSabyenc) {
  if (!HavePythonModule("sabyenc3"))
    GTEST_SKIP() << "cross-check cannot run: python3-sabyenc missing";
  TempFolder folder;
  for (size_t size : {1u, 127u, 128u, 5000u, 100000u}) {
    const Bytes data = RandomBytes(size, static_cast<uint32_t>(size) + 5);
    const std::string input = folder.Write("data.bin", data);
    const std::string ours = folder.Path("ours.yenc");
    ASSERT_TRUE(YencodeFile(input.c_str(), ours.c_str()));
    // sabyenc decodes our whole file and checks its CRC.
    EXPECT_EQ(Python("(lambda r: r[0] if r[2] else b'crc mismatch')("
                     "__import__('sabyenc3').decode_usenet_chunks([data]))",
                     TempFolder::Read(ours)),
              data)
        << size;
    // What sabyenc encodes, framed as a single part, we decode.
    const Bytes framed = Python(
        "(lambda e: b'=ybegin line=128 size=%d name=data.bin\\r\\n' % len(data) + e[0] + "
        "b'\\r\\n=yend size=%d crc32=%08x\\r\\n' % (len(data), e[1]))("
        "__import__('sabyenc3').encode(data))",
        data);
    const std::string file = folder.Write("theirs.yenc", framed);
    const std::string back = folder.Path("back.bin");
    EXPECT_TRUE(YdecodeFile(file.c_str(), back.c_str())) << size;
    EXPECT_EQ(TempFolder::Read(back), data) << size;
  }
}

TEST(CrossCheck, UuencodeAndYencAgainstUudeview) {
  Bytes probe;
  if (!RunTool("which uuenview uudeview >/dev/null", {}, probe)) {
    GTEST_SKIP() << "cross-check cannot run: uudeview missing";
  }
  TempFolder folder;
  const Bytes data = RandomBytes(70000, 21);
  const std::string source = folder.Write("data.bin", data);
  // uudeview reads what we write, in both formats.
  for (auto* encode : {UuencodeFile, YencodeFile}) {
    const std::string ours = folder.Path("ours.txt");
    ASSERT_TRUE(encode(source.c_str(), ours.c_str()));
    const std::string out = folder.Path("out");
    Bytes ignored;
    ASSERT_TRUE(RunTool(
        "mkdir -p " + out + " && uudeview -i -o -q -p " + out + "/ " + ours + " >/dev/null 2>&1",
        {}, ignored));
    EXPECT_EQ(TempFolder::Read(out + "/data.bin"), data);
    RunTool("rm -rf " + out, {}, ignored);
  }
  // A multi-part yEnc set that uuenview splits, in one file, we read.
  Bytes ignored;
  const std::string parts = folder.Path("parts");
  ASSERT_TRUE(RunTool(
      "mkdir -p " + parts + " && uuenview -y -200 -od " + parts + " " + source + " >/dev/null 2>&1",
      {}, ignored));
  Bytes joined;
  ASSERT_TRUE(RunTool("cat " + parts + "/data.0*", {}, joined));
  const std::string set = folder.Write("set.yenc", joined);
  const std::string back = folder.Path("back.bin");
  ASSERT_NE(ToString(joined).find("part=3"), std::string::npos);
  EXPECT_TRUE(YdecodeFile(set.c_str(), back.c_str()));
  EXPECT_EQ(TempFolder::Read(back), data);
}

}  // namespace
}  // namespace fe::test

#endif  // _WIN32
