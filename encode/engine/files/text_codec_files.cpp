// The file forms of quoted-printable, Base32, Base58 and Base85: the data
// codecs driven chunk by chunk between two files. Reads and writes go
// through megabyte buffers; the codecs still see the pieces plain reads of
// the chunk size would give. Except for Base58, these codecs have never
// reported a failed write, and still do not.
#include <cstring>
#include <vector>

#include "codecs/codec_internal.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/file_codec.h"

namespace {

using namespace fe::files;

// Quoted-printable is read this many bytes at a time, whole pieces.
constexpr uint32_t kQpBlock = 256 * fe::codecs::kQpFilePiece;
constexpr uint32_t kChunk = 512;
constexpr uint32_t kBase85DecodeChunk = 1024;
constexpr int32_t kEncodedCapacity = 1024;

// Reads the whole file; false with ERROR_OUTOFMEMORY when it does not fit
// in memory, or the read's error.
bool ReadWhole(fe::platform::FileHandle file, std::vector<uint8_t>& data) {
  uint64_t size = 0;
  if (!fe::platform::GetFileSize(file, &size)) return false;
  try {
    data.resize(static_cast<size_t>(size));
  } catch (const std::bad_alloc&) {
    fe::SetLastError(fe::kErrorOutOfMemory);
    return false;
  }
  size_t have = 0;
  while (have < data.size()) {
    uint32_t read = 0;
    const auto want = static_cast<uint32_t>(std::min<size_t>(data.size() - have, 1u << 30));
    if (!fe::platform::ReadFile(file, data.data() + have, want, &read)) return false;
    if (read == 0) break;
    have += read;
  }
  data.resize(have);
  return true;
}

// Base58 works on the whole file: encode or decode it in memory, and only
// then create the output and write it in one go.
int Base58File(const char* inputName, const char* outputName, bool encode) {
  if (!CheckNames(inputName, outputName)) return 0;
  std::vector<uint8_t> data;
  {
    ScopedFile input(fe::platform::OpenFile(inputName, fe::platform::FileOpen::kRead));
    if (!input.Valid() || !ReadWhole(input.get(), data)) return 0;
  }
  // The result buffer is twice the input size, as it always was.
  std::vector<uint8_t> result(2 * data.size() + 1);
  int32_t length;
  if (encode) {
    length =
        Base58Encode(data.empty() ? result.data() : data.data(), static_cast<int32_t>(data.size()),
                     reinterpret_cast<char*>(result.data()), static_cast<int32_t>(2 * data.size()));
  } else {
    data.push_back(0);  // the decoder takes a terminated text
    length = Base58Decode(reinterpret_cast<const char*>(data.data()), result.data(),
                          static_cast<int32_t>(2 * (data.size() - 1)));
  }
  if (length < 0) return 0;
  ScopedFile output(fe::platform::OpenFile(outputName, fe::platform::FileOpen::kCreate));
  if (!output.Valid()) return 0;
  return fe::compress::WriteAll(output.get(), result.data(), static_cast<size_t>(length)) ? 1 : 0;
}

}  // namespace

extern "C" {

int QpEncodeFile(const char* inputName, const char* outputName) {
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  // Each 16-byte piece is encoded on its own, as files written by earlier
  // versions were: its column count starts afresh, so the soft line break
  // never comes and the file is one line. A block of whole pieces at a
  // time (the reader is short only at the end) splits them the same way.
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  uint8_t block[kQpBlock];
  char text[3 * kQpBlock];
  for (uint32_t n; (n = reader.Read(block, kQpBlock)) > 0;)
    writer.Write(text, static_cast<uint32_t>(fe::codecs::QpEncodePieces(block, n, text)));
  return 1;
}

int QpDecodeFile(const char* inputName, const char* outputName) {
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  QpDecodeState state{};
  char text[kChunk];
  uint8_t bytes[kChunk];
  int32_t count = 0;
  for (uint32_t n; (n = reader.Read(text, kChunk)) > 0;) {
    count = QpDecodeChunk(text, static_cast<int32_t>(n), bytes, kChunk, &state);
    if (count < 0) break;  // the partial output stays
    writer.Write(bytes, static_cast<uint32_t>(count));
  }
  return count >= 0 ? 1 : 0;
}

int Base32EncodeFile(const char* inputName, const char* outputName) {
  if (!CheckNames(inputName, outputName)) return 0;
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  Base32State state{};
  uint8_t bytes[kChunk];
  char text[kEncodedCapacity];
  for (uint32_t n; (n = reader.Read(bytes, kChunk)) > 0;) {
    const int32_t count =
        Base32EncodeChunk(bytes, static_cast<int32_t>(n), text, kEncodedCapacity, &state, 1);
    if (count > 0) writer.Write(text, static_cast<uint32_t>(count));
  }
  const int32_t count = Base32EncodeFinish(&state, text, kEncodedCapacity, 1);
  if (count > 0) writer.Write(text, static_cast<uint32_t>(count));
  return 1;
}

int Base32DecodeFile(const char* inputName, const char* outputName) {
  if (!CheckNames(inputName, outputName)) return 0;
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  Base32State state{};
  char text[kChunk];
  uint8_t bytes[kChunk];
  for (uint32_t n; (n = reader.Read(text, kChunk)) > 0;) {
    const int32_t count = Base32DecodeChunk(text, static_cast<int32_t>(n), bytes, kChunk, &state);
    if (count < 0) return 0;  // the partial output stays
    writer.Write(bytes, static_cast<uint32_t>(count));
  }
  return 1;
}

int Base58EncodeFile(const char* inputName, const char* outputName) {
  return Base58File(inputName, outputName, true);
}

int Base58DecodeFile(const char* inputName, const char* outputName) {
  return Base58File(inputName, outputName, false);
}

int Base85EncodeFile(const char* inputName, const char* outputName) {
  if (!CheckNames(inputName, outputName)) return 0;
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  // Whole 4-byte groups only, the 0 to 3 bytes left over going in front of
  // the next chunk; the last of them make the final partial group.
  uint8_t bytes[kChunk + 3];
  char text[kEncodedCapacity];
  uint32_t carried = 0;
  for (uint32_t n; (n = reader.Read(bytes + carried, kChunk)) > 0;) {
    const uint32_t total = carried + n;
    const uint32_t whole = total & ~3u;
    if (whole > 0) {
      const int32_t count =
          Base85Encode(bytes, static_cast<int32_t>(whole), text, kEncodedCapacity);
      if (count > 0) writer.Write(text, static_cast<uint32_t>(count));
    }
    carried = total - whole;
    std::memmove(bytes, bytes + whole, carried);
  }
  if (carried > 0) {
    const int32_t count =
        Base85Encode(bytes, static_cast<int32_t>(carried), text, kEncodedCapacity);
    if (count > 0) writer.Write(text, static_cast<uint32_t>(count));
  }
  return 1;
}

int Base85DecodeFile(const char* inputName, const char* outputName) {
  if (!CheckNames(inputName, outputName)) return 0;
  FilePair files;
  if (!files.Open(inputName, outputName)) return 0;
  BufferedReader reader(files.input.get());
  BufferedWriter writer(files.output.get());
  // The decoder's group carries across reads, so a group split between two
  // reads decodes as if the file were one text.
  fe::codecs::Base85Decoder decoder;
  char text[kBase85DecodeChunk];
  uint8_t bytes[4 * kBase85DecodeChunk];  // 'z' gives four bytes for one character
  for (uint32_t n; (n = reader.Read(text, kBase85DecodeChunk)) > 0;) {
    const int32_t count = decoder.Feed(text, n, bytes, sizeof bytes);
    if (count < 0) return 0;
    writer.Write(bytes, static_cast<uint32_t>(count));
  }
  writer.Write(bytes, static_cast<uint32_t>(decoder.Finish(bytes, 4)));
  return 1;
}

}  // extern "C"
