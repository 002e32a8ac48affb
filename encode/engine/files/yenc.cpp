// yEnc files: single-part encoding, single- and multi-part decoding with
// size and CRC-32 checks. Both sides use C stdio ("rb", "wb") with the
// 8-bit names as they are given.
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "codecs/codec_internal.h"
#include "file_encoder.h"
#include "files/file_codec.h"

namespace {

constexpr long kLineLength = 128;
constexpr size_t kReadChunk = 4096;
constexpr int kMaxLine = 4096;
constexpr size_t kMaxName = 259;

constexpr auto kCrcTable = [] {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t crc = i;
    for (int k = 0; k < 8; ++k)
      crc = crc & 1 ? (crc >> 1) ^ 0xEDB88320u : crc >> 1;
    table[i] = crc;
  }
  return table;
}();

uint32_t UpdateCrc(uint32_t crc, uint8_t byte) {
  return kCrcTable[(crc ^ byte) & 0xFF] ^ (crc >> 8);
}

// NUL, TAB, LF, CR, '.' and '=' are escaped wherever they stand.
bool IsCritical(uint8_t c) {
  return c == 0 || (c <= 61 && ((0x2000400000002600ull >> c) & 1));
}

// A file opened with stdio, closed on every path.
class StdioFile {
 public:
  StdioFile(const char* name, const char* mode) : file_(name ? std::fopen(name, mode) : nullptr) {}
  ~StdioFile() { Close(); }
  StdioFile(const StdioFile&) = delete;
  StdioFile& operator=(const StdioFile&) = delete;
  FILE* get() const { return file_; }
  void Close() {
    if (file_ != nullptr) std::fclose(file_);
    file_ = nullptr;
  }

 private:
  FILE* file_;
};

// A key's value: where "key" stands in the line not glued to a longer word.
const char* FindKey(const char* line, const char* key) {
  const size_t length = std::strlen(key);
  for (const char* at = std::strstr(line, key); at != nullptr; at = std::strstr(at + 1, key)) {
    if (at == line || !std::isalnum(static_cast<unsigned char>(at[-1]))) return at + length;
  }
  return nullptr;
}

bool StartsWith(const char* line, const char* prefix) {
  return std::strncmp(line, prefix, std::strlen(prefix)) == 0;
}

// The decoder: every failure closes both files and removes the output.
class Decoder {
 public:
  Decoder(const char* inputName, const char* outputName)
      : input_(inputName, "rb"),
        output_(input_.get() ? outputName : nullptr, "wb"),
        output_name_(outputName ? outputName : "") {}

  bool Opened() const { return input_.get() != nullptr && output_.get() != nullptr; }

  int Run() {
    // The header: "=ybegin " with name=, size= and line=.
    do {
      if (!NextLine()) return Fail();
    } while (!(StartsWith(line_, "=ybegin ") && FindKey(line_, "name=") &&
               FindKey(line_, "size=") && FindKey(line_, "line=")));
    const long size = std::atol(FindKey(line_, "size="));
    const char* part = FindKey(line_, "part=");
    const bool multipart = part != nullptr;
    if (multipart && std::atol(part) != 1) return Fail();
    long begin = 0, end = 0;
    if (multipart && !ReadPartLine(&begin, &end)) return Fail();
    long total = 0;
    for (long number = 1;; ++number) {
      uint32_t crc = 0xFFFFFFFF;
      long count = 0;
      if (!DecodePart(&crc, &count)) return Fail();
      const char* trailerSize = FindKey(line_, "size=");
      if (trailerSize != nullptr && std::atol(trailerSize) != count) return Fail();
      if (!multipart) {
        const char* crc32 = FindKey(line_, "crc32=");
        if (crc32 != nullptr && ParseHex32(crc32) != ~crc) return Fail();
        return count == size ? Succeed() : Fail();
      }
      // Parts are checked by their own CRC; the whole-file crc32 of a
      // multi-part trailer is not looked at.
      const char* pcrc32 = FindKey(line_, "pcrc32=");
      if (pcrc32 != nullptr && ParseHex32(pcrc32) != ~crc) return Fail();
      if (count != end - begin + 1) return Fail();
      total += count;
      if (total == size) return Succeed();
      if (total > size) return Fail();
      // The next part must follow, numbered one up.
      do {
        if (!NextLine()) return Fail();
      } while (!StartsWith(line_, "=ybegin "));
      const char* next = std::strstr(line_, " part=");
      if (next == nullptr || std::atol(next + 6) != number + 1) return Fail();
      if (!ReadPartLine(&begin, &end)) return Fail();
    }
  }

 private:
  bool NextLine() { return std::fgets(line_, kMaxLine, input_.get()) != nullptr; }

  bool ReadPartLine(long* begin, long* end) {
    if (!NextLine() || !StartsWith(line_, "=ypart ")) return false;
    const char* endKey = FindKey(line_, "end=");
    const char* beginKey = FindKey(line_, "begin=");
    if (endKey == nullptr || beginKey == nullptr) return false;
    *begin = std::atol(beginKey);
    *end = std::atol(endKey);
    return true;
  }

  // Decodes data lines up to the "=yend " trailer, which stays in line_.
  bool DecodePart(uint32_t* crc, long* count) {
    uint8_t buffer[kReadChunk];
    size_t used = 0;
    for (;;) {
      if (!NextLine()) return false;
      if (StartsWith(line_, "=yend ")) break;
      for (const char* p = line_; *p != '\0'; ++p) {
        if (*p == '\r' || *p == '\n') continue;
        uint8_t c = static_cast<uint8_t>(*p);
        if (c == '=') {
          const char next = p[1];
          if (next == '\0' || next == '\r' || next == '\n') return false;
          c = static_cast<uint8_t>(static_cast<uint8_t>(next) - 64);
          ++p;
        }
        const auto byte = static_cast<uint8_t>(c - 42);
        *crc = UpdateCrc(*crc, byte);
        ++*count;
        buffer[used++] = byte;
        if (used == sizeof buffer) {
          if (std::fwrite(buffer, used, 1, output_.get()) != 1) return false;
          used = 0;
        }
      }
    }
    return used == 0 || std::fwrite(buffer, used, 1, output_.get()) == 1;
  }

  int Succeed() {
    input_.Close();
    output_.Close();
    return 1;
  }

  int Fail() {
    input_.Close();
    output_.Close();
    std::remove(output_name_.c_str());
    return 0;
  }

  StdioFile input_;
  StdioFile output_;
  std::string output_name_;
  char line_[kMaxLine];
};

}  // namespace

extern "C" {

uint32_t ParseHex32(const char* text) {
  if (text == nullptr) return 0xFFFFFFFF;
  uint32_t value = 0;
  for (; std::isxdigit(static_cast<unsigned char>(*text)); ++text) {
    const char c = *text;
    value = value << 4 | static_cast<uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  }
  return value;
}

int YencodeFile(const char* inputName, const char* outputName) {
  StdioFile input(inputName, "rb");
  if (input.get() == nullptr) return 0;
  if (std::fseek(input.get(), 0, SEEK_END) != 0) return 0;
  const auto size = static_cast<int32_t>(std::ftell(input.get()));
  std::fseek(input.get(), 0, SEEK_SET);
  StdioFile output(outputName, "wb");
  if (output.get() == nullptr) return 0;
  auto fail = [&] {
    output.Close();
    std::remove(outputName);
    return 0;
  };
  // The base name, white space replaced: the header is one line of words.
  std::string name = fe::files::BaseName(inputName);
  name.resize(std::min(name.size(), kMaxName));
  for (char& c : name) {
    if (fe::codecs::IsAsciiSpace(static_cast<uint8_t>(c))) c = '_';
  }
  std::fprintf(output.get(), "=ybegin line=%ld size=%ld name=%s\r\n", kLineLength,
               static_cast<long>(size), name.c_str());
  uint32_t crc = 0xFFFFFFFF;
  char line[kLineLength + 4];
  size_t used = 0;
  uint8_t chunk[kReadChunk];
  for (long remaining = size; remaining > 0;) {
    const size_t n = static_cast<size_t>(std::min<long>(remaining, kReadChunk));
    if (std::fread(chunk, n, 1, input.get()) != 1) return fail();
    for (size_t i = 0; i < n; ++i) {
      crc = UpdateCrc(crc, chunk[i]);
      const auto c = static_cast<uint8_t>(chunk[i] + 42);
      if (IsCritical(c)) {
        line[used++] = '=';
        line[used++] = static_cast<char>(c + 64);
      } else {
        line[used++] = static_cast<char>(c);
      }
      const bool last = remaining == static_cast<long>(n) && i + 1 == n;
      if (used >= kLineLength || last) {
        line[used++] = '\r';
        line[used++] = '\n';
        if (std::fwrite(line, used, 1, output.get()) != 1) return fail();
        used = 0;
      }
    }
    remaining -= static_cast<long>(n);
  }
  // The space before the line end is part of the format files were always
  // written in.
  std::fprintf(output.get(), "=yend size=%ld crc32=%08lx \r\n", static_cast<long>(size),
               static_cast<unsigned long>(size < 1 ? 0 : ~crc));
  return 1;
}

int YdecodeFile(const char* inputName, const char* outputName) {
  Decoder decoder(inputName, outputName);
  if (!decoder.Opened()) return 0;
  return decoder.Run();
}

}  // extern "C"
