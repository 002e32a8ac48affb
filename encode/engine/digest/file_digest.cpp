// GetFileDigestMD5 / SHA1 / SHA256: a whole file hashed through one 8 KiB
// buffer, the digest written as uppercase hexadecimal text.
#include "digest/file_digest.h"

#include <array>

#include "codecs/hex_digits.h"
#include "digest/hash.h"
#include "errors/last_error.h"
#include "file_encoder.h"
#include "platform/scoped_file.h"

namespace fe::digest {

namespace {
constexpr uint32_t kChunkSize = 8192;
}  // namespace

int32_t DigestFile(HashKind kind, const char* path, char* output) {
  if (path == nullptr || output == nullptr) {
    SetLastError(ControlError(ovErrorInvalidParameter));
    return 0;
  }
  *output = '\0';
  const platform::ScopedFile file(platform::OpenFile(path, platform::FileOpen::kRead));
  if (!file.Valid()) return 0;
  Hash hash(kind);
  std::array<uint8_t, kChunkSize> chunk{};
  for (;;) {
    uint32_t read = 0;
    if (!platform::ReadFile(file.get(), chunk.data(), kChunkSize, &read)) return 0;
    if (read == 0) break;
    hash.Update(chunk.data(), read);
  }
  uint8_t digest[Hash::kMaxDigestSize];
  const size_t size = hash.Finish(digest);
  // SHA-1's five words printed "%08X" each give the same text as its bytes
  // in order, so one form serves all three.
  for (size_t i = 0; i < size; ++i)
    codecs::PutHexByte(digest[i], output + 2 * i);
  output[2 * size] = '\0';
  return static_cast<int32_t>(2 * size);
}

}  // namespace fe::digest

extern "C" {

int32_t GetFileDigestMD5(const char* path, char* output) {
  return fe::digest::DigestFile(fe::digest::HashKind::kMd5, path, output);
}

int32_t GetFileDigestSHA1(const char* path, char* output) {
  return fe::digest::DigestFile(fe::digest::HashKind::kSha1, path, output);
}

int32_t GetFileDigestSHA256(const char* path, char* output) {
  return fe::digest::DigestFile(fe::digest::HashKind::kSha256, path, output);
}

}  // extern "C"
