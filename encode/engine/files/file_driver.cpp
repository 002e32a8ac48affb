// EncodeFileByType / DecodeFileByType: the file codec for an encoding
// number, with compression before encoding (or expansion after decoding)
// through a temporary file.
#include <string>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/file_codec.h"

namespace {

using FileCodec = int (*)(const char*, const char*);

constexpr uint32_t kEncodingMask = 0xFFFF;
constexpr uint32_t kCompressed = 65536;
constexpr uint32_t kDeflate = 1;

// The Base64 rows exist but convert nothing: files are Base64-encoded
// through the data operations instead. Only the argument checks remain.
int RefuseBase64File(const char* inputName, const char* outputName) {
  if (inputName == nullptr || *inputName == '\0') {
    fe::SetLastError(fe::kErrorInvalidParameter);
    return 0;
  }
  if (outputName == nullptr || *outputName == '\0') return 0;
  fe::SetLastError(fe::kErrorInvalidParameter);
  return 0;
}

// The codec of an encoding number; null for 5 and numbers above 8.
FileCodec CodecFor(uint32_t encoding, bool encode) {
  switch (encoding) {
    case 0:
    case 1:
      return RefuseBase64File;
    case 2:
      return encode ? QpEncodeFile : QpDecodeFile;
    case 3:
      return encode ? UuencodeFile : UudecodeFile;
    case 4:
      return encode ? YencodeFile : YdecodeFile;
    case 6:
      return encode ? Base58EncodeFile : Base58DecodeFile;
    case 7:
      return encode ? Base32EncodeFile : Base32DecodeFile;
    case 8:
      return encode ? Base85EncodeFile : Base85DecodeFile;
    default:
      return nullptr;
  }
}

bool MakeTempFile(std::string& name) {
  char path[260];
  if (CreateTempFileName(nullptr, nullptr, path) == nullptr) return false;
  name = path;
  return true;
}

// Removing the temporary file must not replace the code of a failure.
void RemoveTempFile(const std::string& name) {
  const fe::KeepLastError keep;
  fe::platform::RemoveFile(name.c_str());
}

}  // namespace

extern "C" {

int EncodeFileByType(const char* inputName, const char* outputName, uint32_t flags) {
  std::string compressed;
  const char* input = inputName;
  if (flags & kCompressed) {
    if (!MakeTempFile(compressed)) return 0;
    if (!CompressFileByType(inputName, compressed.c_str(), kDeflate, 0)) {
      RemoveTempFile(compressed);
      return 0;
    }
    input = compressed.c_str();
  }
  const FileCodec codec = CodecFor(flags & kEncodingMask, true);
  const int result = codec != nullptr ? codec(input, outputName) : 0;
  if (!compressed.empty()) RemoveTempFile(compressed);
  return result;
}

int DecodeFileByType(const char* inputName, const char* outputName, uint32_t flags) {
  std::string decoded;
  const char* destination = outputName;
  if (flags & kCompressed) {
    if (!MakeTempFile(decoded)) return 0;
    destination = decoded.c_str();
  }
  // On every failure the temporary file stays where it is: only a complete
  // decode is expanded and cleaned up, as callers have always seen.
  const FileCodec codec = CodecFor(flags & kEncodingMask, false);
  if (codec == nullptr) return 0;
  const int result = codec(inputName, destination);
  if (!result || decoded.empty()) return result;
  const int expanded = ExpandFileByType(decoded.c_str(), outputName, kDeflate);
  RemoveTempFile(decoded);
  return expanded;
}

}  // extern "C"
