// EncryptFileData / DecryptFileData: a whole file through the buffer cipher
// into a temporary file, which takes the output's place only when the
// whole transform succeeded. The result has exactly the buffer form, so
// files and buffers decrypt each other.
#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "crypt/key_string.h"
#include "crypt/wipe.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/file_codec.h"
#include "files/finished_file.h"
#include "platform/scoped_file.h"

namespace fe::crypt {

namespace {

constexpr uint32_t kChunkSize = 4096;
// Encryption needs room for the padding block after the last chunk.
constexpr uint32_t kEncryptWorkSize = kChunkSize + 128;
constexpr uint32_t kMaxPath = 260;

bool Fail(uint32_t code) {
  SetLastError(code);
  return false;
}

bool UsablePath(const char* path) {
  if (path == nullptr || *path == '\0') return false;
  // Paths are widened before use; one that does not convert names nothing.
  return platform::MultiByteToWide(platform::kCodePageUtf8, platform::kFailOnInvalidChars, path,
                                   static_cast<int>(std::strlen(path)), nullptr, 0) > 0;
}

bool IsDirectoryOrDevice(uint32_t attributes) {
  return (attributes & (platform::kAttributeDirectory | platform::kAttributeDevice)) != 0;
}

// What stood at the output's name before the run, so that the result
// replaces only that, or takes a name that is still free.
struct OutputBefore {
  bool exists = false;
  platform::FileIdentity identity;
};

bool CheckOutput(const char* output, OutputBefore* before) {
  const uint32_t attributes = platform::FileAttributes(output);
  if (attributes == platform::kNoAttributes) return true;  // a new file
  if (IsDirectoryOrDevice(attributes)) return Fail(kErrorBadFileType);
  if (attributes & platform::kAttributeReadOnly) return Fail(kErrorAccessDenied);
  before->exists = platform::IdentifyPath(output, &before->identity);
  return true;
}

bool MakeTemporaryFile(std::string* name) {
  char prefix[16];
  std::snprintf(prefix, sizeof prefix, "%08lX",
                static_cast<unsigned long>(platform::GetTickCount()));
  std::string folder;
  const uint32_t length = platform::TempPath(&folder);
  if (length == 0 || length > kMaxPath) return Fail(kErrorPathNotFound);
  if (!platform::CreateUniqueTempFile(folder.c_str(), prefix, name)) {
    return Fail(kErrorFileNotFound);
  }
  return true;
}

// Runs the cipher over the input into the open temporary file, in the
// 4096-byte chunks of the buffer form; reads and writes go through 1 MiB
// buffers, which are cleared afterwards like the work buffer. The
// service's code, or 0.
uint32_t Transform(bool encrypt, const char* password, platform::FileHandle input, uint64_t size,
                   platform::FileHandle output) {
  char keyString[kKeyStringSize];
  const size_t keyLength = BuildKeyString(password, keyString);
  platform::CipherKey* key = nullptr;
  const uint32_t opened =
      platform::OpenCipherKey(reinterpret_cast<const uint8_t*>(keyString), keyLength, &key);
  Wipe(keyString, sizeof keyString);
  if (opened != 0) return opened;
  files::BufferedReader reader(input);
  files::BufferedWriter writer(output);
  std::array<uint8_t, kEncryptWorkSize> work{};
  const uint32_t workSize = encrypt ? kEncryptWorkSize : kChunkSize;
  uint64_t total = 0;
  bool final = false;
  uint32_t error = 0;
  // A failed read ends the loop as the end of the file would, without an
  // error, as files made by earlier versions were: what was transformed so
  // far is the result.
  uint32_t read = reader.Read(work.data(), kChunkSize);
  while (read > 0) {
    total += read;
    if (total == size) final = true;
    uint32_t length = read;
    error = platform::CipherTransform(key, encrypt, final, work.data(), &length, workSize);
    if (error != 0) break;
    writer.Write(work.data(), length);
    Wipe(work.data(), work.size());
    read = reader.Read(work.data(), kChunkSize);
  }
  if (error == 0) {
    writer.Flush();
    if (writer.Failed()) error = LastError();
  }
  writer.Discard();
  writer.Wipe();
  reader.Wipe();
  Wipe(work.data(), work.size());
  platform::CloseCipherKey(key);
  return error;
}

bool RunFileCipher(bool encrypt, const char* password, const char* inputPath,
                   const char* outputPath) {
  if (!UsablePath(inputPath) || !UsablePath(outputPath)) return Fail(kErrorInvalidName);
  const uint32_t attributes = platform::FileAttributes(inputPath);
  if (attributes == platform::kNoAttributes) return false;
  if (IsDirectoryOrDevice(attributes)) return Fail(kErrorBadFileType);
  OutputBefore before;
  if (!CheckOutput(outputPath, &before)) return false;
  std::string temporary;
  if (!MakeTemporaryFile(&temporary)) return false;

  // An input that cannot be opened or measured leaves the empty temporary
  // file where it is, as it always has.
  platform::ScopedFile input(platform::OpenFile(inputPath, platform::FileOpen::kRead));
  if (!input.Valid()) return false;
  uint64_t size = 0;
  platform::FileIdentity read;
  if (!platform::GetFileSize(input.get(), &size) || !platform::IdentifyFile(input.get(), &read)) {
    return false;
  }
  platform::ScopedFile output(platform::OpenFile(temporary.c_str(), platform::FileOpen::kCreate));
  platform::FileIdentity created;
  if (!output.Valid() || !platform::IdentifyFile(output.get(), &created)) {
    const KeepLastError keep;
    platform::RemoveFile(temporary.c_str());
    return false;
  }
  const uint32_t error = Transform(encrypt, password, input.get(), size, output.get());
  input.Close();
  output.Close();
  if (error != 0) {
    platform::RemoveCreatedFile(temporary.c_str(), created);
    return Fail(error == platform::kBadData ? kErrorInvalidData : error);
  }
  // The result takes the output's place atomically: over the input itself
  // or over the file that stood there, only while that is unchanged, or
  // under a name that is still free.
  const platform::FileIdentity& replaced = before.identity.SameFile(read) ? read : before.identity;
  if (!files::PlaceFinishedFile(temporary.c_str(), created, outputPath,
                                before.exists ? &replaced : nullptr)) {
    return false;
  }
  SetLastError(0);
  return true;
}

}  // namespace

}  // namespace fe::crypt

extern "C" {

int EncryptFileData(const char* password, const char* inputPath, const char* outputPath) {
  return fe::crypt::RunFileCipher(true, password, inputPath, outputPath);
}

int DecryptFileData(const char* password, const char* inputPath, const char* outputPath) {
  return fe::crypt::RunFileCipher(false, password, inputPath, outputPath);
}

}  // extern "C"
