// EncryptText / DecryptText: the buffer cipher with its cipher text carried
// as Base64 without padding.
#include <algorithm>
#include <cstring>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

// Cipher text shorter than one unpadded 16-byte block (22 characters) is
// refused before decoding.
constexpr size_t kShortestCipherText = 21;

// The Base64 length of n bytes without the final group's rounding up.
int64_t Base64Length(int64_t n) {
  return (n * 4 / 3 + 3) & ~int64_t{3};
}

// Copies text into a caller's buffer of `capacity` characters, cut to fit.
void CopyText(const char* text, size_t length, char* target, int32_t capacity) {
  const size_t copied = std::min(length, static_cast<size_t>(capacity - 1));
  std::memcpy(target, text, copied);
  target[copied] = '\0';
}

int32_t Fail(uint32_t code) {
  fe::SetLastError(code);
  return 0;
}

}  // namespace

extern "C" {

int32_t EncryptText(const char* password, const char* plainText, int32_t /*reserved*/,
                    char* cipherText, int32_t cipherCapacity) {
  if (plainText == nullptr || cipherText == nullptr) return Fail(fe::kErrorInvalidParameter);
  if (cipherCapacity <= 16) return Fail(fe::kErrorInsufficientBuffer);
  cipherText[0] = '\0';
  const size_t length = std::strlen(plainText);
  if (cipherCapacity <= Base64Length(static_cast<int64_t>(length))) {
    return Fail(fe::kErrorInsufficientBuffer);
  }
  fe::platform::ZeroedBlock<uint8_t> cipher(static_cast<size_t>(cipherCapacity));
  if (cipher.data() == nullptr) return Fail(fe::kErrorOutOfMemory);
  uint32_t cipherLength = static_cast<uint32_t>(cipherCapacity);
  if (!EncryptBuffer(password, reinterpret_cast<const uint8_t*>(plainText),
                     static_cast<uint32_t>(length), cipher.data(), &cipherLength)) {
    return 0;
  }
  // An empty plain text encrypts to nothing: an empty cipher text, success.
  if (cipherLength == 0) return 0;
  fe::platform::ZeroedBlock<char> text(static_cast<size_t>(Base64Length(cipherLength) + 4));
  if (text.data() == nullptr) return Fail(fe::kErrorOutOfMemory);
  int32_t textLength = Base64Encode(cipher.data(), static_cast<int32_t>(cipherLength), text.data(),
                                    static_cast<int32_t>(Base64Length(cipherLength) + 4));
  if (textLength < 1 || textLength >= cipherCapacity) return Fail(fe::kErrorInsufficientBuffer);
  while (textLength > 1 && text.data()[textLength - 1] == '=')
    --textLength;
  CopyText(text.data(), static_cast<size_t>(textLength), cipherText, cipherCapacity);
  return static_cast<int32_t>(std::strlen(cipherText));
}

int32_t DecryptText(const char* password, const char* cipherText, char* plainText,
                    int32_t plainCapacity) {
  if (cipherText == nullptr || plainText == nullptr) return Fail(fe::kErrorInvalidParameter);
  if (plainCapacity <= 1) return Fail(fe::kErrorInsufficientBuffer);
  const size_t textLength = std::strlen(cipherText);
  if (textLength < kShortestCipherText) return Fail(fe::kErrorInvalidData);
  fe::platform::ZeroedBlock<uint8_t> cipher(textLength + 1);
  if (cipher.data() == nullptr) return Fail(fe::kErrorOutOfMemory);
  const int32_t cipherLength =
      Base64Decode(cipherText, cipher.data(), static_cast<int32_t>(textLength + 1));
  if (cipherLength < 1) return Fail(fe::kErrorInvalidData);
  if (cipherLength > plainCapacity) return Fail(fe::kErrorInsufficientBuffer);
  fe::platform::ZeroedBlock<char> plain(static_cast<size_t>(plainCapacity) + 1);
  if (plain.data() == nullptr) return Fail(fe::kErrorOutOfMemory);
  uint32_t plainLength = static_cast<uint32_t>(plainCapacity);
  // On failure the caller's text stays as it was and its length is returned;
  // the last error tells the failure apart.
  if (DecryptBuffer(password, cipher.data(), static_cast<uint32_t>(cipherLength),
                    reinterpret_cast<uint8_t*>(plain.data()), &plainLength)) {
    if (plainLength < static_cast<uint32_t>(plainCapacity)) plain.data()[plainLength] = '\0';
    CopyText(plain.data(), strnlen(plain.data(), plainLength), plainText, plainCapacity);
  }
  return static_cast<int32_t>(std::strlen(plainText));
}

}  // extern "C"
