// EncryptBuffer / DecryptBuffer: the whole input as one AES-256-CBC message,
// worked through a fixed block of memory whatever its size.
#include <algorithm>
#include <array>
#include <cstring>

#include "crypt/key_string.h"
#include "crypt/wipe.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

using fe::crypt::Wipe;

constexpr uint32_t kChunkSize = 4096;
// Encryption needs room for the padding block after the last chunk.
constexpr uint32_t kEncryptWorkSize = kChunkSize + 128;

enum class Direction { kEncrypt, kDecrypt };

bool RunCipher(Direction direction, const char* password, const uint8_t* input,
               uint32_t inputLength, uint8_t* output, uint32_t* outputLength) {
  if (input == nullptr || output == nullptr || outputLength == nullptr) {
    fe::SetLastError(fe::kErrorInvalidParameter);
    return false;
  }
  const bool encrypt = direction == Direction::kEncrypt;
  uint32_t remaining = *outputLength;
  *outputLength = 0;
  if (encrypt && remaining < inputLength) {
    fe::SetLastError(fe::kErrorInsufficientBuffer);
    return false;
  }
  char keyString[fe::crypt::kKeyStringSize];
  const size_t keyLength = fe::crypt::BuildKeyString(password, keyString);
  fe::platform::CipherKey* key = nullptr;
  uint32_t error =
      fe::platform::OpenCipherKey(reinterpret_cast<const uint8_t*>(keyString), keyLength, &key);
  Wipe(keyString, sizeof keyString);
  if (error != 0) {
    fe::SetLastError(error);
    return false;
  }
  // An empty input is not run through the cipher at all, so it encrypts to
  // nothing rather than to a padding block: data written by earlier
  // versions relies on this.
  std::array<uint8_t, kEncryptWorkSize> work{};
  const uint32_t workSize = encrypt ? kEncryptWorkSize : kChunkSize;
  uint32_t done = 0;
  uint32_t written = 0;
  while (done < inputLength) {
    const uint32_t chunk = std::min(kChunkSize, inputLength - done);
    const bool final = done + chunk == inputLength;
    uint32_t length = chunk;
    if (!final && chunk <= remaining) {
      // A chunk before the last one comes out exactly as long as it went in,
      // so it goes straight into the caller's buffer: no plain text passes
      // through the work buffer and there is nothing to clear.
      error =
          fe::platform::CipherTransformBlocks(key, encrypt, input + done, output + written, chunk);
    } else {
      std::memcpy(work.data(), input + done, chunk);
      error = fe::platform::CipherTransform(key, encrypt, final, work.data(), &length, workSize);
      if (error == 0 && length > remaining) error = fe::kErrorInsufficientBuffer;
      if (error == 0) std::memcpy(output + written, work.data(), length);
      Wipe(work.data(), workSize);
    }
    if (error != 0) break;
    written += length;
    remaining -= length;
    done += chunk;
  }
  Wipe(work.data(), work.size());
  fe::platform::CloseCipherKey(key);
  if (error != 0) {
    fe::SetLastError(error == fe::platform::kBadData ? fe::kErrorInvalidData : error);
    return false;
  }
  *outputLength = written;
  fe::SetLastError(0);
  return true;
}

}  // namespace

extern "C" {

int EncryptBuffer(const char* password, const uint8_t* input, uint32_t inputLength, uint8_t* output,
                  uint32_t* outputLength) {
  return RunCipher(Direction::kEncrypt, password, input, inputLength, output, outputLength);
}

int DecryptBuffer(const char* password, const uint8_t* input, uint32_t inputLength, uint8_t* output,
                  uint32_t* outputLength) {
  return RunCipher(Direction::kDecrypt, password, input, inputLength, output, outputLength);
}

}  // extern "C"
