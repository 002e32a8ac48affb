// Uuencoded files: a "begin 644 name" block of 45-byte lines, ended by the
// zero-length line and "end".
#include <algorithm>
#include <cstring>
#include <string>

#include "codecs/uu_alphabet.h"
#include "codecs/uu_kernels.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/file_codec.h"

namespace {

using namespace fe::files;

constexpr uint32_t kLineBytes = 45;
constexpr size_t kLineBufferSize = 1024;
constexpr size_t kFlushAt = 944;
constexpr size_t kDecodeFlushAt = 1008;

char UuChar(uint32_t value) {
  return fe::codecs::kUuAlphabet[value & 63];
}

// The characters of `groups` whole groups, the kernel taking them where
// the processor has one.
void EncodeGroups(const uint8_t* in, size_t groups, char* out) {
  if (const auto* kernels = fe::codecs::ChosenUuKernels()) {
    kernels->encodeGroups(in, groups, out);
    return;
  }
  for (size_t group = 0; group < groups; ++group, in += 3, out += 4) {
    out[0] = UuChar(in[0] >> 2);
    out[1] = UuChar(((in[0] & 3) << 4) | (in[1] >> 4));
    out[2] = UuChar(((in[1] & 15) << 2) | (in[2] >> 6));
    out[3] = UuChar(in[2] & 63);
  }
}

// The three bytes of one group of four characters.
void DecodeGroup(const uint8_t* text, uint8_t* out) {
  uint8_t v[4];
  for (size_t k = 0; k < 4; ++k)
    v[k] = static_cast<uint8_t>((text[k] - 32) & 63);
  out[0] = static_cast<uint8_t>((v[0] << 2) | (v[1] >> 4));
  out[1] = static_cast<uint8_t>((v[1] << 4) | (v[2] >> 2));
  out[2] = static_cast<uint8_t>((v[2] << 6) | v[3]);
}

// The bytes of `groups` whole groups of four characters.
void DecodeGroups(const uint8_t* text, size_t groups, uint8_t* out) {
  if (const auto* kernels = fe::codecs::ChosenUuKernels()) {
    kernels->decodeGroups(text, groups, out);
    return;
  }
  for (size_t group = 0; group < groups; ++group)
    DecodeGroup(text + 4 * group, out + 3 * group);
}

// Lines of the file by position: the line at an offset is the first line
// end within the 1024 bytes from there. A last line without a line end, or
// a line of 1024 characters or more, ends the input. The bytes come from a
// window over the file (an IoBlock) rather than a seek and read for every
// line.
class UuLines {
 public:
  explicit UuLines(fe::platform::FileHandle file) : file_(file) {}

  // The line at *offset, NUL-terminated in buffer (1025 bytes), or null;
  // advances *offset past its line end.
  char* Read(char* buffer, int64_t* offset) {
    if (!Cover(*offset)) return nullptr;
    const uint8_t* from = window_.data() + (*offset - start_);
    const size_t read = std::min(kLineBufferSize, length_ - static_cast<size_t>(*offset - start_));
    size_t end = LineEnd(from, read);
    if (end == read) return nullptr;
    const bool crlf = from[end] == '\r' && end + 1 < read && from[end + 1] == '\n';
    std::memcpy(buffer, from, end);
    buffer[end] = '\0';
    // The offset moves on by the text's length up to its first NUL, as it
    // always has: a line holding a NUL makes the next line start after it.
    *offset += static_cast<int64_t>(std::strlen(buffer)) + 1 + (crlf ? 1 : 0);
    return buffer;
  }

 private:
  // The position of the first CR or LF among the n bytes, or n.
  static size_t LineEnd(const uint8_t* bytes, size_t n) {
    const void* lf = std::memchr(bytes, '\n', n);
    const size_t before = lf ? static_cast<size_t>(static_cast<const uint8_t*>(lf) - bytes) : n;
    const void* cr = std::memchr(bytes, '\r', before);
    return cr ? static_cast<size_t>(static_cast<const uint8_t*>(cr) - bytes) : before;
  }

  // Makes the window hold the 1024 bytes from offset, or all up to the end.
  bool Cover(int64_t offset) {
    const int64_t end = start_ + static_cast<int64_t>(length_);
    if (offset >= start_ && (offset + static_cast<int64_t>(kLineBufferSize) <= end || at_end_) &&
        offset <= end) {
      return true;
    }
    if (!fe::platform::SeekFile(file_, offset)) return false;
    start_ = offset;
    length_ = 0;
    for (uint32_t n; length_ < window_.size() &&
                     (n = ReadChunk(file_, window_.data() + length_,
                                    static_cast<uint32_t>(window_.size() - length_))) > 0;) {
      length_ += n;
    }
    at_end_ = length_ < window_.size();
    return true;
  }

  fe::platform::FileHandle file_;
  IoBlock window_;
  int64_t start_ = 0;
  size_t length_ = 0;
  bool at_end_ = false;
};

// Not absolute, no drive, no ".." segment (with either separator).
bool IsPlainRelativeName(const std::string& name) {
  if (name.empty() || name[0] == '/' || name[0] == '\\') return false;
  if (name.size() >= 2 && name[1] == ':') return false;
  size_t start = 0;
  for (size_t i = 0; i <= name.size(); ++i) {
    if (i == name.size() || name[i] == '/' || name[i] == '\\') {
      if (name.compare(start, i - start, "..") == 0 && i - start == 2) return false;
      start = i + 1;
    }
  }
  return true;
}

}  // namespace

extern "C" {

int UuencodeFile(const char* inputName, const char* outputName) {
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  // The chunk is deliberately not cleared between reads: a short last group
  // takes its missing bytes from the previous read, and the length
  // character tells decoders to ignore them.
  uint8_t chunk[kLineBytes + 3] = {};
  char line[kLineBufferSize + 128];
  size_t used = 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  const std::string header = std::string("begin 644 ") + BaseName(inputName) + "\r\n";
  writer.Write(header.data(), static_cast<uint32_t>(header.size()));
  for (uint32_t n; (n = reader.Read(chunk, kLineBytes)) > 0;) {
    line[used++] = UuChar(n);
    const uint32_t groups = (n - 1) / 3 + 1;
    EncodeGroups(chunk, groups, line + used);
    used += 4 * groups;
    line[used++] = '\r';
    line[used++] = '\n';
    if (used >= kFlushAt) {
      writer.Write(line, static_cast<uint32_t>(used));
      used = 0;
    }
  }
  line[used++] = '`';
  writer.Write(line, static_cast<uint32_t>(used));
  writer.Write("\r\nend\r\n", 7);
  return 1;
}

int UudecodeFile(const char* inputName, const char* outputName) {
  ScopedFile input(fe::platform::OpenFile(inputName, fe::platform::FileOpen::kRead));
  if (!input.Valid()) return 0;
  char line[kLineBufferSize + 1];
  int64_t offset = 0;
  UuLines lines(input.get());
  const char* text;
  do {
    text = lines.Read(line, &offset);
    if (text == nullptr) return 0;
  } while (std::strncmp(text, "begin ", 6) != 0);
  // After "begin ": white space, the mode digits (ignored), white space,
  // then the stored name.
  const char* name = text + 6;
  while (*name == ' ' || *name == '\t')
    ++name;
  while (*name >= '0' && *name <= '9')
    ++name;
  while (*name == ' ' || *name == '\t')
    ++name;
  const std::string storedName = name;
  const bool named = outputName != nullptr && *outputName != '\0';
  // A name from a stranger's file may only name a file in the current
  // folder or below it.
  if (!named && !IsPlainRelativeName(storedName)) {
    fe::SetLastError(fe::kErrorInvalidName);
    return 0;
  }
  const char* target = named ? outputName : storedName.c_str();
  ScopedFile output(fe::platform::OpenFile(target, fe::platform::FileOpen::kCreate));
  if (!output.Valid()) return 0;
  // Decoded bytes collect in a 1 KiB block that is handed on when nearly
  // full; the writer only saves on system calls.
  BufferedWriter writer(output.get());
  uint8_t bytes[kLineBufferSize];
  size_t used = 0;
  text = lines.Read(line, &offset);
  while (text != nullptr) {
    int n = (text[0] - 32) & 63;
    if (n == 0) {
      writer.Write(bytes, static_cast<uint32_t>(used));
      text = lines.Read(line, &offset);
      return text != nullptr && std::strcmp(text, "end") == 0 ? 1 : 0;
    }
    // Nothing is validated: every character gives the six bits of
    // (c - 32), so '`' and space both read as 0, and the length character
    // alone decides how many bytes the line gives.
    // An empty line has no characters after its (missing) length character.
    const auto* c = reinterpret_cast<const uint8_t*>(text + 1);
    const size_t length = text[0] != '\0' ? std::strlen(text + 1) : 0;
    size_t at = 0;
    while (n > 0) {
      if (used >= kDecodeFlushAt) {
        writer.Write(bytes, static_cast<uint32_t>(used));
        used = 0;
      }
      // Whole groups with all their characters at once, up to the group
      // that finds the block full, where it is handed on as before.
      const size_t whole =
          std::min({static_cast<size_t>(n / 3), at < length ? (length - at) / 4 : 0,
                    (kDecodeFlushAt - used + 2) / 3});
      if (whole > 0) {
        DecodeGroups(c + at, whole, bytes + used);
        used += 3 * whole;
        at += 4 * whole;
        n -= static_cast<int>(3 * whole);
        continue;
      }
      // A short last group, or one past the line's characters: missing
      // characters read as 0 (a space).
      uint8_t group[4] = {' ', ' ', ' ', ' '};
      for (size_t k = 0; k < 4 && at + k < length; ++k)
        group[k] = c[at + k];
      uint8_t three[3];
      DecodeGroup(group, three);
      const auto take = static_cast<size_t>(std::min(n, 3));
      std::memcpy(bytes + used, three, take);
      used += take;
      at += 4;
      n -= 3;
    }
    text = lines.Read(line, &offset);
  }
  // Without the zero-length line the block is incomplete: what was written
  // so far stays, what was still buffered is dropped.
  return 0;
}

}  // extern "C"
