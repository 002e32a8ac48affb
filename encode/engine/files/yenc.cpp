// yEnc files: single-part encoding, single- and multi-part decoding with
// size and CRC-32 checks. Both sides go through the platform's files with
// its share modes, and refuse an output that is the input itself.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "codecs/codec_internal.h"
#include "codecs/yenc_body.h"
#include "digest/crc32.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/file_codec.h"

namespace {

using namespace fe::files;
namespace platform = fe::platform;

constexpr size_t kReadChunk = 4096;
constexpr int kMaxLine = 4096;
constexpr size_t kMaxName = 259;

// The header's size is a signed 32-bit number.
constexpr uint64_t kLargestFile = 0x7FFFFFFF;

// Opens the output for a yEnc codec whose input is already open: an output
// that is the input file itself, by any name, is refused (32) before it is
// opened for writing.
platform::FileHandle CreateOutput(platform::FileHandle input, const char* outputName,
                                  platform::FileIdentity* created) {
  platform::FileIdentity in, out;
  if (platform::IdentifyFile(input, &in) && platform::IdentifyPath(outputName, &out) &&
      in.SameFile(out)) {
    fe::SetLastError(fe::kErrorSharingViolation);
    return platform::kInvalidFile;
  }
  const platform::FileHandle file = platform::OpenFile(outputName, platform::FileOpen::kCreate);
  if (file != platform::kInvalidFile) platform::IdentifyFile(file, created);
  return file;
}

// Lines of at most kMaxLine - 1 characters, each with its LF, as fgets
// gives them, read from the file in 64 KiB pieces. Next gives the line's
// length, NULs included (0 at the end of the file).
class LineReader {
 public:
  explicit LineReader(platform::FileHandle file) : file_(file) {}
  size_t Next(char* line) {
    size_t length = 0;
    while (length < kMaxLine - 1) {
      if (at_ == have_) {
        have_ = ReadChunk(file_, chunk_, sizeof chunk_);
        at_ = 0;
        if (have_ == 0) break;
      }
      // Up to and with the LF, as much as the line still takes.
      const size_t room = std::min<size_t>(kMaxLine - 1 - length, have_ - at_);
      const void* lf = std::memchr(chunk_ + at_, '\n', room);
      const size_t n =
          lf ? static_cast<size_t>(static_cast<const uint8_t*>(lf) - (chunk_ + at_)) + 1 : room;
      std::memcpy(line + length, chunk_ + at_, n);
      at_ += static_cast<uint32_t>(n);
      length += n;
      if (lf) break;
    }
    line[length] = '\0';
    return length;
  }

 private:
  platform::FileHandle file_;
  uint8_t chunk_[65536];
  uint32_t at_ = 0;
  uint32_t have_ = 0;
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
      : input_(platform::OpenFile(inputName, platform::FileOpen::kRead)),
        lines_(input_.get()),
        output_name_(outputName ? outputName : "") {
    if (input_.Valid()) output_.Reset(CreateOutput(input_.get(), outputName, &created_));
  }

  bool Opened() const { return input_.Valid() && output_.Valid(); }

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
  bool NextLine() { return lines_.Next(line_) > 0; }

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
    // Decoded bytes gather in a block; the output is removed on any
    // failure, so how much is written at a time shows nowhere.
    uint8_t* const buffer = decoded_.data();
    size_t used = 0;
    const auto flush = [&] {
      *crc = fe::digest::Crc32Update(*crc, buffer, used);
      const bool written = fe::compress::WriteAll(output_.get(), buffer, used);
      used = 0;
      return written;
    };
    for (;;) {
      const size_t length = lines_.Next(line_);
      if (length == 0) return false;
      if (StartsWith(line_, "=yend ")) break;
      if (decoded_.size() - used < length + 64 && !flush()) return false;
      size_t made = 0;
      if (!fe::codecs::DecodeYencLine(line_, length, buffer + used, &made)) return false;
      used += made;
      *count += static_cast<long>(made);
    }
    return flush();
  }

  int Succeed() {
    input_.Close();
    output_.Close();
    return 1;
  }

  int Fail() {
    const fe::KeepLastError keep;
    input_.Close();
    output_.Close();
    platform::RemoveCreatedFile(output_name_.c_str(), created_);
    return 0;
  }

  ScopedFile input_;
  LineReader lines_;
  ScopedFile output_;
  platform::FileIdentity created_;
  std::string output_name_;
  char line_[kMaxLine];
  IoBlock decoded_;
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
  ScopedFile input(platform::OpenFile(inputName, platform::FileOpen::kRead));
  if (!input.Valid()) return 0;
  uint64_t fileSize = 0;
  if (!platform::GetFileSize(input.get(), &fileSize)) return 0;
  // The header cannot state a larger size: refuse rather than write a
  // block that says less than it holds.
  if (fileSize > kLargestFile) {
    fe::SetLastError(fe::kErrorFileTooLarge);
    return 0;
  }
  const auto size = static_cast<long>(fileSize);
  platform::FileIdentity created;
  ScopedFile output(CreateOutput(input.get(), outputName, &created));
  if (!output.Valid()) return 0;
  BufferedReader reader(input.get());
  BufferedWriter writer(output.get());
  auto fail = [&] {
    const fe::KeepLastError keep;
    writer.Discard();
    output.Close();
    platform::RemoveCreatedFile(outputName, created);
    return 0;
  };
  // The base name, white space replaced: the header is one line of words.
  std::string name = fe::files::BaseName(inputName);
  name.resize(std::min(name.size(), kMaxName));
  for (char& c : name) {
    if (fe::codecs::IsAsciiSpace(static_cast<uint8_t>(c))) c = '_';
  }
  char text[kMaxName + 96];
  int length = std::snprintf(text, sizeof text, "=ybegin line=%ld size=%ld name=%s\r\n",
                             static_cast<long>(fe::codecs::kYencLineLength), size, name.c_str());
  writer.Write(text, static_cast<uint32_t>(length));
  uint32_t crc = 0xFFFFFFFF;
  uint8_t chunk[kReadChunk];
  char encoded[fe::codecs::YencEncodedRoom(kReadChunk)];
  size_t lineUsed = 0;
  fe::SetLastError(0);
  for (long remaining = size; remaining > 0;) {
    const auto n = static_cast<uint32_t>(std::min<long>(remaining, kReadChunk));
    if (reader.Read(chunk, n) != n) {
      // A read that failed keeps its code; a file that shrank is bad data.
      if (fe::LastError() == 0) fe::SetLastError(fe::kErrorInvalidData);
      return fail();
    }
    crc = fe::digest::Crc32Update(crc, chunk, n);
    const size_t made = fe::codecs::EncodeYencBody(chunk, n, encoded, &lineUsed);
    writer.Write(encoded, static_cast<uint32_t>(made));
    remaining -= static_cast<long>(n);
  }
  // The last byte ends its line wherever it stands.
  if (lineUsed > 0) writer.Write("\r\n", 2);
  // The space before the line end is part of the format files were always
  // written in.
  length = std::snprintf(text, sizeof text, "=yend size=%ld crc32=%08lx \r\n", size,
                         static_cast<unsigned long>(size < 1 ? 0 : ~crc));
  writer.Write(text, static_cast<uint32_t>(length));
  writer.Flush();
  return writer.Failed() ? fail() : 1;
}

int YdecodeFile(const char* inputName, const char* outputName) {
  Decoder decoder(inputName, outputName);
  if (!decoder.Opened()) return 0;
  return decoder.Run();
}

}  // extern "C"
